#ifndef CORVANA_SAMPLE_CORE_CLIENT_H_
#define CORVANA_SAMPLE_CORE_CLIENT_H_

#include <gio/gio.h>

#include <optional>
#include <string>

#include "endpoint.h"

// The longest request head that is read, in bytes; also the size of every client's input buffer.
inline constexpr gsize k_max_head_size = 65536;

// An accepted connection during its handshake, which blocks a worker thread of its own. Borrowed
// pointers: the service's handler owns both.
struct Client {
  GSocketConnection* connection;
  GBufferedInputStream* input;  // reads `connection`
};

// Writes all of `bytes`; false when the other side is gone or takes nothing for too long.
bool send_bytes(GSocketConnection* connection, const std::string& bytes);

// The next `count` bytes that the client sends; nothing when it leaves before, or is silent too
// long.
std::optional<std::string> read_bytes(const Client& client, gsize count);

// The port in two bytes, the higher one first, as SOCKS sends it.
uint16_t port_in(const std::string& two_bytes);

// Ends the client's connection after a last answer. Waits a moment for what the client still sends,
// because the kernel discards the answer when a socket is closed with unread data.
void close_gently(const Client& client);

// Connects to `target` without any proxy; blocks for some seconds at most. Returns a new connection
// that the caller releases, or null with `error` set.
GSocketConnection* connect_direct(const Endpoint& target, GError** error);

#endif
