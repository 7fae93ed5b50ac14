#ifndef CORVANA_CORE_CORE_PATHS_H_
#define CORVANA_CORE_CORE_PATHS_H_

#include <string>

// The core's path: what the shell finds on PATH, else the first of the places where an installation
// puts it that the user may execute; "" when there is none. The path is given as it was found, not
// made canonical. Nothing is cached and nothing printed. Blocks for one shell. Any thread.
std::string find_zant_binary();

// The core's per-user working directory, without a trailing slash, made when it is missing:
// "Corvana/run" in the user's data home, or a directory under /tmp when that can't be made or
// written. Never fails; where even /tmp refuses, whoever uses the path meets the error. Any thread.
std::string get_user_runtime_dir();

// The core's log: "runtime.log" in that directory. Pure.
std::string runtime_log_in(const std::string& runtime_dir);

// The same in get_user_runtime_dir(), which this makes too. Any thread.
std::string runtime_log_path();

#endif
