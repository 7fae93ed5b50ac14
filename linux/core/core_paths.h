#ifndef CORVANA_CORE_CORE_PATHS_H_
#define CORVANA_CORE_CORE_PATHS_H_

#include <string>

// The first core that the user may execute: on PATH as the shell finds it, in bin/ beside the
// executable, in /opt/corvana/bin, in /usr/local/bin; "" when there is none. The path is given as
// it was found, not made canonical. Nothing is cached and nothing printed. Blocks for one shell.
// Any thread.
std::string find_zant_binary();

// The core's per-user working directory, without a trailing slash, made when it is missing:
// "Corvana/run" in the user's data home, or a directory under /tmp when that can't be made or
// written. Never fails; when /tmp can't be written either, opening a file there fails. Any thread.
std::string get_user_runtime_dir();

// The core's log: "runtime.log" in that directory. Pure.
std::string runtime_log_in(const std::string& runtime_dir);

// The same in get_user_runtime_dir(), which this makes too. Any thread.
std::string runtime_log_path();

#endif
