#ifndef CORVANA_SAMPLE_CORE_SERVER_H_
#define CORVANA_SAMPLE_CORE_SERVER_H_

#include <string>

#include "config.h"

// Starts listening on every port of `config`; clients are served as soon as the main loop runs. The
// ports stay open until the process ends. False when one can't be opened, with one line for the
// user in `error`. To be called once, from the main thread.
bool start_server(const CoreConfig& config, std::string* error);

#endif
