#ifndef CORVANA_SAMPLE_CORE_CLASH_API_H_
#define CORVANA_SAMPLE_CORE_CLASH_API_H_

#include "client.h"

// Answers one request of the clash API: GET /version, anything else is not found. Blocks; to be
// called from the client's worker thread.
void serve_clash_api(const Client& client);

#endif
