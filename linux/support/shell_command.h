#ifndef CORVANA_SUPPORT_SHELL_COMMAND_H_
#define CORVANA_SUPPORT_SHELL_COMMAND_H_

#include <chrono>
#include <cstddef>
#include <string>

// Each command is run by "/bin/sh -c" in a process group of its own, which a Ctrl-C in the terminal
// doesn't reach, and blocks the calling thread until the shell has ended. While the host is
// leaving, a command that takes longer than its limit is killed with all that it started.
// Any thread, except where another one is named.

// Sets the signal actions that console lines and commands need. To be called first of all, on the
// main thread.
void prepare_signals();

// The shell's wait status, as from the C library's `system`; -1 when no shell could be started or
// the killed one doesn't end.
int run_shell_command(const std::string& command);

// True when `command` ends with exit status 0.
bool shell_command_succeeds(const std::string& command);

// The first line that `command` prints, without the carriage returns and line feeds at its end, cut
// before its first NUL and after `max_size` bytes. "" when there is none.
std::string first_output_line(const std::string& command, size_t max_size);

// All that `command` prints; "" when it can't be started.
std::string command_output(const std::string& command);

// Steady time since a shell last started or ended anywhere in the process.
std::chrono::milliseconds time_since_shell_activity();

#endif
