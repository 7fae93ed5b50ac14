#ifndef CORVANA_CORE_CORE_CONFIG_H_
#define CORVANA_CORE_CORE_CONFIG_H_

#include <string>

// Ports out of the core's JSON configuration by plain text search: the core checks whether it is
// valid JSON. Pure; any thread.

// The number behind the first colon of the first "external_controller" value; 0 when there is none
// or it doesn't fit 32 bits. May be negative, as written.
int clash_api_port(const std::string& config);

// The first "listen_port" behind the first "mixed" in double quotes; 0 when there is none or it
// doesn't fit 32 bits.
int mixed_port(const std::string& config);

#endif
