#ifndef CORVANA_CORE_CORE_PROCESS_H_
#define CORVANA_CORE_CORE_PROCESS_H_

// The core as the host knows it: by its name in the command lines of running processes. The host
// keeps no process id.

inline constexpr char k_core_name[] = "zant";

// True while some process's command line holds the core's name, see is_process_running(). Any
// thread.
bool is_core_running();

// Sends SIGKILL to every process whose command line holds the core's start command. There may be
// fewer of them than is_core_running() sees. Doesn't wait for their end. False when none was
// signalled or pkill is missing. Blocks for one shell. Any thread.
bool terminate_core();

#endif
