#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_PREVIEW_OPTIONS_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_PREVIEW_OPTIONS_H_

#include <string>

namespace preview {

enum class ProxyMode { set_system_proxy = 1, no_system_proxy = 4 };

struct Options {
  std::string config;  // absolute path in UTF-8; empty: the ready-made configuration
  ProxyMode proxy_mode = ProxyMode::set_system_proxy;
  bool connect = false;
  std::string page = "connection";  // the name of a page of the stack
  std::string screenshot;           // a file name in the file system's encoding; empty: none
  bool quit = false;
};

struct ParsedOptions {
  Options options;
  std::string complaint;  // one line that says what was wrong; empty when nothing was
};

// Reads a null-terminated vector that has no program name in front; null is an empty one. A wrong
// option costs only itself, but one that isn't understood, or that names the connection, leaves the
// defaults for that and `connect` off: another connection than the one asked for would do harm. Any
// thread, needs no display.
ParsedOptions parse_options(char** arguments);

}  // namespace preview

#endif
