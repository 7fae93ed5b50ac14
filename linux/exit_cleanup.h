#ifndef CORVANA_EXIT_CLEANUP_H_
#define CORVANA_EXIT_CLEANUP_H_

#include <gio/gio.h>

// Tells everybody that the host leaves, and the console by `line`. Main thread.
void announce_leaving(const char* line);

// Tells the workers to give up, waits for them as long as there is hope, then takes back what is
// left: a core that runs, and the proxy that points at it. Blocks; running it again is safe. Main
// thread.
void leave_cleanly();

// False when a worker was still running as leave_cleanly() gave up on it: the process must then end
// without destroying the state that the worker uses. Main thread.
bool have_workers_gone();

// Makes SIGTERM, SIGINT and SIGHUP leave cleanly and tell `application` to quit, which must outlive
// the main loop. Main thread.
void hook_exit_signals(GApplication* application);

#endif
