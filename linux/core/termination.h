#ifndef CORVANA_CORE_TERMINATION_H_
#define CORVANA_CORE_TERMINATION_H_

// Sends SIGKILL to every process that was started as a core. Does not wait for their end; whether
// it worked, only the probe tells. Any thread.
void terminate_core();

#endif
