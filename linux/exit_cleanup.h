#ifndef CORVANA_EXIT_CLEANUP_H_
#define CORVANA_EXIT_CLEANUP_H_

#include <gio/gio.h>

// Begins leaving and prints `line`. Main thread.
void announce_leaving(const char* line);

// Tells the workers to give up, waits for them, then takes back what is left: a proxy that points
// at a core, and the core. Blocks; running it again is safe. Main thread.
void leave_cleanly();

// True when leave_cleanly() has stopped waiting for a worker that still runs: the process must then
// end without destroying the state that the worker uses. Main thread.
bool is_worker_abandoned();

// Makes each of k_exit_signals leave cleanly and tell `application` to quit, which must outlive the
// main loop. Main thread.
void hook_exit_signals(GApplication* application);

#endif
