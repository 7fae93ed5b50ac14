#ifndef CORVANA_EXIT_CLEANUP_H_
#define CORVANA_EXIT_CLEANUP_H_

#include <glib.h>

// Makes sure that no core outlives the host and no proxy that points at it: tells the workers to
// give up, waits for them as long as there is hope, then takes back what is left. Blocks; running
// it again is safe. Main thread.
void leave_cleanly();

// False when a worker was still running as leave_cleanly() gave up on it: the process must then end
// without destroying the state that the worker uses. Main thread.
bool have_workers_gone();

// The handler of SIGTERM, SIGINT and SIGHUP as a main-loop source. `user_data` is the application,
// which is told to quit. Always G_SOURCE_REMOVE. Main thread.
gboolean on_unix_exit_signal(gpointer user_data);

// Adds that handler for all three signals. Borrows `application`. Main thread.
void hook_exit_signals(gpointer application);

#endif
