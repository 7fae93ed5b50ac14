#ifndef CORVANA_CORE_SHELL_QUOTING_H_
#define CORVANA_CORE_SHELL_QUOTING_H_

#include <string>

// `path` with a backslash before blanks, quotes and the usual shell operators, so that the shell
// takes it as one word. Wildcards, "~", "#", "!", braces, tabs and line feeds are not covered. All
// other bytes pass unchanged. Not g_shell_quote(): people read the command line on the console, and
// a usual path stands there as it is. Pure; any thread.
std::string escape_path(const std::string& path);

#endif
