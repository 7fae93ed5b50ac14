#ifndef CORVANA_SAMPLE_CORE_CONFIG_H_
#define CORVANA_SAMPLE_CORE_CONFIG_H_

#include <optional>
#include <string>
#include <vector>

#include "endpoint.h"

struct CoreConfig {
  std::vector<Endpoint> mixed;  // at least one
  std::optional<Endpoint> clash_api;
};

// Reads the JSON configuration file at `path`; keys that aren't used here are ignored. On failure
// gives nothing and puts one line for the user into `error`. May be called from any thread.
std::optional<CoreConfig> load_config(const std::string& path, std::string* error);

#endif
