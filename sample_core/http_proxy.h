#ifndef CORVANA_SAMPLE_CORE_HTTP_PROXY_H_
#define CORVANA_SAMPLE_CORE_HTTP_PROXY_H_

#include "client.h"

// Serves one HTTP proxy client: CONNECT, or one request in absolute form. Every failure is answered
// and logged. Blocks; to be called from the client's worker thread.
void serve_http_proxy(const Client& client);

#endif
