#ifndef CORVANA_EXIT_CLEANUP_H_
#define CORVANA_EXIT_CLEANUP_H_

#include <gio/gio.h>

// Begins leaving and prints `line`. Main thread, except after the loss of an X11 display.
void announce_leaving(const char* line);

// Begins leaving and waits for the workers. Then clears the system proxy if a core runs or
// is_proxy_without_core(), and kills the core if one runs. Blocks; running it again is safe. Main
// thread, except after the loss of an X11 display.
void leave_cleanly();

// True when leave_cleanly() has stopped waiting for a worker that still runs: the process must then
// end without destroying the state that the worker uses. Main thread.
bool is_worker_abandoned();

// From now on each of k_exit_signals runs leave_cleanly() and quits `application`, which the caller
// keeps alive until the main loop has ended. Main thread.
void hook_exit_signals(GApplication* application);

#endif
