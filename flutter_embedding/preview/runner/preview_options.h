#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_PREVIEW_OPTIONS_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_PREVIEW_OPTIONS_H_

#include <string>

namespace preview {

enum class ProxyMode { set_system_proxy = 1, no_system_proxy = 4 };

struct Options {
  std::string config;  // absolute path in UTF-8; empty: the default configuration
  ProxyMode proxy_mode = ProxyMode::set_system_proxy;
  bool connect = false;
  std::string page = "connection";  // the name of a page of the stack
  std::string screenshot;           // a file name in the file system's encoding; empty: none
  bool quit = false;
};

struct ParsedOptions {
  Options options;
  std::string complaint;  // one line about the first error; empty when there is none
};

// Parses a null-terminated vector that doesn't begin with the program's name; null is an empty one.
// A wrong option is ignored. Unless it is only an unknown page, all options of the connection keep
// their defaults and `connect` is off, because another connection than the one asked for could do
// harm. Any thread, needs no display.
ParsedOptions parse_options(char** arguments);

}  // namespace preview

#endif
