#include "server.h"

#include <gio/gio.h>
#include <sys/resource.h>

#include <atomic>

#include "clash_api.h"
#include "client.h"
#include "http_proxy.h"
#include "log.h"
#include "socks4.h"
#include "socks5.h"

static constexpr guint k_handshake_timeout_seconds = 30;
static constexpr int k_accept_backlog = 512;
static constexpr int k_no_thread_limit = -1;  // a slow client must not keep others waiting

static constexpr rlim_t k_spare_descriptors = 32;

static rlim_t g_max_clients = 0;  // set before the first client comes
static std::atomic<rlim_t> g_open_clients = 0;

using Serve = void (*)(const Client& client);

static void serve_mixed(const Client& client) {
  gsize count = 0;
  const void* bytes = g_buffered_input_stream_peek_buffer(client.input, &count);
  const char first = *static_cast<const char*>(bytes);
  if (first == 4) return serve_socks4(client);
  if (first == 5) return serve_socks5(client);
  if (g_ascii_isalpha(first)) return serve_http_proxy(client);
  log_event("client refused: it speaks neither HTTP nor SOCKS");
  close_gently(client);
}

// The usual soft limit is only 1024, and a tunnel takes two descriptors.
static void raise_descriptor_limit() {
  rlimit limit = {};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
  g_max_clients = (MAX(limit.rlim_cur, k_spare_descriptors) - k_spare_descriptors) / 2;
}

// Without a free descriptor GIO would fail to accept, complain and try again for ever. True drops
// the client.
static gboolean drop_or_count_client(GSocketService*, GSocketConnection* connection) {
  if (g_open_clients >= g_max_clients) {
    log_event("client refused: too many are open");
    return TRUE;
  }
  ++g_open_clients;
  g_object_set_data_full(G_OBJECT(connection), "open client", connection,
                         [](gpointer) { --g_open_clients; });
  return FALSE;
}

// Runs on a worker thread of its own for every client.
static gboolean on_client(GThreadedSocketService*, GSocketConnection* connection, GObject*,
                          gpointer serve) {
  g_socket_set_timeout(g_socket_connection_get_socket(connection), k_handshake_timeout_seconds);
  GInputStream* raw_input = g_io_stream_get_input_stream(G_IO_STREAM(connection));
  g_autoptr(GInputStream) input = g_buffered_input_stream_new_sized(raw_input, k_max_head_size);
  g_filter_input_stream_set_close_base_stream(G_FILTER_INPUT_STREAM(input), FALSE);

  // A port probe connects and sends nothing; that isn't logged.
  const Client client = {connection, G_BUFFERED_INPUT_STREAM(input)};
  if (g_buffered_input_stream_fill(client.input, -1, nullptr, nullptr) > 0) {
    reinterpret_cast<Serve>(serve)(client);
  }
  return TRUE;
}

// Names other than localhost aren't listened on: which interface opens must not depend on a
// resolver.
static GSocketAddress* listening_address(const Endpoint& endpoint) {
  const char* host = endpoint.host == "localhost" ? "127.0.0.1" : endpoint.host.c_str();
  return g_inet_socket_address_new_from_string(host, endpoint.port);
}

static bool listen_on(const Endpoint& endpoint, const char* kind, Serve serve, std::string* error) {
  g_autoptr(GSocketAddress) address = listening_address(endpoint);
  if (address == nullptr) {
    *error = "cannot listen on " + to_text(endpoint) + ": not an IP address";
    return false;
  }
  GSocketService* service = g_threaded_socket_service_new(k_no_thread_limit);
  g_signal_connect(service, "incoming", G_CALLBACK(drop_or_count_client), nullptr);
  g_signal_connect(service, "run", G_CALLBACK(on_client), reinterpret_cast<gpointer>(serve));
  g_socket_listener_set_backlog(G_SOCKET_LISTENER(service), k_accept_backlog);

  g_autoptr(GError) listen_error = nullptr;
  if (!g_socket_listener_add_address(G_SOCKET_LISTENER(service), address, G_SOCKET_TYPE_STREAM,
                                     G_SOCKET_PROTOCOL_TCP, nullptr, nullptr, &listen_error)) {
    *error = "cannot listen on " + to_text(endpoint) + ": " + listen_error->message;
    g_object_unref(service);
    return false;
  }
  log_event(std::string("started: ") + kind + " on " + to_text(endpoint));
  return true;
}

bool start_server(const CoreConfig& config, std::string* error) {
  raise_descriptor_limit();
  for (const Endpoint& endpoint : config.mixed) {
    if (!listen_on(endpoint, "mixed proxy", serve_mixed, error)) return false;
  }
  return !config.clash_api || listen_on(*config.clash_api, "clash api", serve_clash_api, error);
}
