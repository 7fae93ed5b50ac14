#ifndef CORVANA_PROXY_SERVICE_DIAGNOSTICS_H_
#define CORVANA_PROXY_SERVICE_DIAGNOSTICS_H_

#include <flutter_linux/flutter_linux.h>

// A map of everything that decides whether the VPN can work on this machine: 13 keys, 14 when a
// core was found. A probe that fails yields false, "" or "unknown"; there is no error. The caller
// owns the map. Runs several shells and the core itself, and blocks until all have ended. Main
// thread.
FlValue* collect_diagnostics();

#endif
