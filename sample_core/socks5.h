#ifndef CORVANA_SAMPLE_CORE_SOCKS5_H_
#define CORVANA_SAMPLE_CORE_SOCKS5_H_

#include "client.h"

// Serves one SOCKS5 client: no authentication, CONNECT only. Every failure is answered with its
// reply code and logged. Blocks; to be called from the client's worker thread.
void serve_socks5(const Client& client);

#endif
