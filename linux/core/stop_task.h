#ifndef CORVANA_CORE_STOP_TASK_H_
#define CORVANA_CORE_STOP_TASK_H_

// Takes the system proxy back and kills every running core, then publishes through the task state
// whether none is left. Never touches the last-error record. Blocks for seconds: the body of a
// worker thread.
void stop_vpn_thread();

#endif
