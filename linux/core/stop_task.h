#ifndef CORVANA_CORE_STOP_TASK_H_
#define CORVANA_CORE_STOP_TASK_H_

// If a core runs, clears the system proxy and kills every core; otherwise changes nothing.
// Publishes through the task state whether no core is left, and false when the host was already
// leaving. Never touches the last-error record. Blocks for seconds: the body of a worker thread.
void stop_vpn_thread();

#endif
