#ifndef CORVANA_SAMPLE_CORE_SOCKS4_H_
#define CORVANA_SAMPLE_CORE_SOCKS4_H_

#include "client.h"

// Serves one SOCKS4 or SOCKS4a client: CONNECT only, whatever user it names. Every failure is
// answered with "rejected" and logged. Blocks; to be called from the client's worker thread.
void serve_socks4(const Client& client);

#endif
