#ifndef CORVANA_SAMPLE_CORE_RELAY_H_
#define CORVANA_SAMPLE_CORE_RELAY_H_

#include <string>

#include "client.h"

// What becomes of the client's bytes.
enum class Upload { passed_on, discarded };

// Passes bytes between `client` and `upstream` in both directions until both have ended, starting
// with what the handshake has read ahead; or those of `upstream` alone. Once one direction has
// ended, the other is closed after minutes of silence. Takes references of its own and returns at
// once; the work happens on the main loop, so that an open tunnel costs no thread. `label` names
// the tunnel in the log. To be called from the client's worker thread, which must not touch the
// connections afterwards.
void start_relay(const Client& client, GSocketConnection* upstream, const std::string& label,
                 Upload upload);

#endif
