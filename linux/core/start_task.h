#ifndef CORVANA_CORE_START_TASK_H_
#define CORVANA_CORE_START_TASK_H_

#include <flutter_linux/flutter_linux.h>

// Brings up a core for the configuration that `args` names and points the system proxy at it, or
// clears the proxy if the mode asks for that; a core that runs already is killed first. Publishes
// its outcome through the task state, a failure also through the last-error record.
//
// `args` is the argument of `startVPN`: a map with "configPath" (string) and "proxyMode" (integer);
// whatever is missing or of another type takes its default. Owns one reference on it and releases
// it before it publishes. Blocks for seconds: the body of a worker thread.
void start_vpn_thread(FlValue* args);

#endif
