#ifndef CORVANA_CORE_START_REQUEST_H_
#define CORVANA_CORE_START_REQUEST_H_

#include <flutter_linux/flutter_linux.h>

#include <cstdint>
#include <string>

// What the user interface asks for with `startVPN`.
struct StartRequest {
  std::string config_path;  // UTF-8; "" when it named none
  int32_t proxy_mode = 1;
};

// Reads the call's argument, which may be of any type; what is missing or of another type keeps its
// default. Borrows `args`. Any thread.
StartRequest read_start_request(FlValue* args);

#endif
