#include "client.h"

static constexpr guint k_connect_timeout_seconds = 10;
static constexpr guint k_linger_timeout_seconds = 2;
static constexpr gsize k_max_lingering_bytes = 1'000'000;

bool send_bytes(GSocketConnection* connection, const std::string& bytes) {
  GOutputStream* output = g_io_stream_get_output_stream(G_IO_STREAM(connection));
  return g_output_stream_write_all(output, bytes.data(), bytes.size(), nullptr, nullptr, nullptr);
}

std::optional<std::string> read_bytes(const Client& client, gsize count) {
  std::string bytes(count, '\0');
  gsize got = 0;
  g_input_stream_read_all(G_INPUT_STREAM(client.input), bytes.data(), count, &got, nullptr,
                          nullptr);
  if (got < count) return std::nullopt;
  return bytes;
}

uint16_t port_in(const std::string& two_bytes) {
  return static_cast<uint16_t>(static_cast<guchar>(two_bytes.at(0)) << 8 |
                               static_cast<guchar>(two_bytes.at(1)));
}

void close_gently(const Client& client) {
  GSocket* socket = g_socket_connection_get_socket(client.connection);
  g_socket_shutdown(socket, FALSE, TRUE, nullptr);
  g_socket_set_timeout(socket, k_linger_timeout_seconds);
  gsize drained = 0;
  gssize count = 0;
  do {
    count = g_input_stream_skip(G_INPUT_STREAM(client.input), k_max_head_size, nullptr, nullptr);
    drained += static_cast<gsize>(MAX(count, 0));
  } while (count > 0 && drained < k_max_lingering_bytes);
}

GSocketConnection* connect_direct(const Endpoint& target, GError** error) {
  g_autoptr(GSocketClient) connector = g_socket_client_new();
  // GIO would use the desktop's proxy, which is this core.
  g_socket_client_set_enable_proxy(connector, FALSE);
  g_socket_client_set_timeout(connector, k_connect_timeout_seconds);
  g_autoptr(GSocketConnectable) address = g_network_address_new(target.host.c_str(), target.port);
  return g_socket_client_connect(connector, address, nullptr, error);
}
