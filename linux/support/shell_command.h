#ifndef CORVANA_SUPPORT_SHELL_COMMAND_H_
#define CORVANA_SUPPORT_SHELL_COMMAND_H_

#include <chrono>
#include <cstddef>
#include <string>

// Each command runs in a process group of its own, which a Ctrl-C in the terminal doesn't reach, and
// blocks the calling thread until its shell has ended. Once the host is leaving, a command that gives
// no answer for seconds is ended with all that it started, so that a hung desktop tool can't hold the
// exit. Everything here may be called on any thread.

// Hands `text` to "/bin/sh -c" and waits. The result is that of the C library's `system`: a wait
// status, -1 when no process could be made, exit status 127 when there is no shell. Unlike `system`
// it leaves the process's signals alone.
int run_shell_command(const std::string& text);

// True when `text` ends with exit status 0.
bool shell_command_succeeds(const std::string& text);

// The first line that `command` prints, without its carriage returns and line feeds at the end, and
// cut before its first NUL and after `buffer_size` - 1 bytes. "" when there is none.
std::string read_first_line(const std::string& command, size_t buffer_size);

// All that `command` prints; "" when it can't be started.
std::string read_command_output(const std::string& command);

// Steady time since a shell command last began or ended anywhere in the process.
std::chrono::milliseconds time_since_shell_activity();

#endif
