#ifndef CORVANA_CORE_READINESS_H_
#define CORVANA_CORE_READINESS_H_

// What a start waits for after the launch. Both block and belong on a worker; both are false when
// the time is over, and at once when the host begins to leave.

// Waits at most about 3 seconds for the core's process to appear.
bool wait_for_core_process();

// Waits at most about 8 seconds, normally 4, until something accepts a connection on 127.0.0.1 at
// `clash_port`. A port below 1 is unknown: then true when the core is still alive after 1 second.
bool wait_for_core_port(int clash_port);

#endif
