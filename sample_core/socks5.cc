#include "socks5.h"

#include "log.h"
#include "relay.h"

enum Reply : char {
  reply_succeeded = 0,
  reply_failed = 1,
  reply_network_unreachable = 3,
  reply_host_unreachable = 4,
  reply_refused = 5,
  reply_command_unsupported = 7,
  reply_address_unsupported = 8,
};

static constexpr char k_connect_command = 1;

static constexpr struct {
  char type;
  gsize size;
  GSocketFamily family;
} k_ip_addresses[] = {{1, 4, G_SOCKET_FAMILY_IPV4}, {4, 16, G_SOCKET_FAMILY_IPV6}};
static constexpr char k_domain_address = 3;

static constexpr struct {
  GIOErrorEnum error;
  Reply reply;
} k_error_replies[] = {
    {G_IO_ERROR_CONNECTION_REFUSED, reply_refused},
    {G_IO_ERROR_NETWORK_UNREACHABLE, reply_network_unreachable},
    {G_IO_ERROR_HOST_UNREACHABLE, reply_host_unreachable},
    {G_IO_ERROR_TIMED_OUT, reply_host_unreachable},
};

// The address that the upstream socket is bound to stays zero: only clients that ask for BIND use
// it.
static bool send_reply(const Client& client, Reply reply) {
  return send_bytes(client.connection, {5, reply, 0, 1, 0, 0, 0, 0, 0, 0});
}

static void refuse(const Client& client, Reply reply, const std::string& reason) {
  log_event(reason);
  send_reply(client, reply);
  close_gently(client);
}

static bool agree_on_no_authentication(const Client& client) {
  const std::optional<std::string> start = read_bytes(client, 2);
  if (!start) return false;
  const std::optional<std::string> methods = read_bytes(client, static_cast<guchar>(start->at(1)));
  if (!methods) return false;
  const bool is_offered = methods->find('\0') != std::string::npos;
  if (!send_bytes(client.connection, {5, is_offered ? '\0' : '\xff'})) return false;
  if (is_offered) return true;
  log_event("socks5 refused: it wants authentication");
  close_gently(client);
  return false;
}

static std::optional<std::string> read_host(const Client& client, char type) {
  if (type == k_domain_address) {
    const std::optional<std::string> size = read_bytes(client, 1);
    return size ? read_bytes(client, static_cast<guchar>(size->front())) : std::nullopt;
  }
  for (const auto& address : k_ip_addresses) {
    if (address.type != type) continue;
    const std::optional<std::string> bytes = read_bytes(client, address.size);
    if (!bytes) return std::nullopt;
    g_autoptr(GInetAddress) parsed = g_inet_address_new_from_bytes(
        reinterpret_cast<const guint8*>(bytes->data()), address.family);
    g_autofree char* text = g_inet_address_to_string(parsed);
    return text;
  }
  refuse(client, reply_address_unsupported, "socks5 refused: unknown address type");
  return std::nullopt;
}

// Gives nothing after a refusal or when the client has left.
static std::optional<Endpoint> receive_target(const Client& client) {
  const std::optional<std::string> request = read_bytes(client, 4);
  if (!request) return std::nullopt;
  const std::optional<std::string> host = read_host(client, request->at(3));
  if (!host) return std::nullopt;
  const std::optional<std::string> port = read_bytes(client, 2);
  if (!port) return std::nullopt;
  if (request->at(0) != 5 || request->at(1) != k_connect_command) {
    refuse(client, reply_command_unsupported, "socks5 refused: only CONNECT is supported");
    return std::nullopt;
  }
  const uint16_t port_number = port_in(*port);
  if (!is_valid_host(*host) || port_number == 0) {
    refuse(client, reply_failed, "socks5 refused: bad target");
    return std::nullopt;
  }
  return Endpoint{*host, port_number};
}

static Reply reply_for(const GError* error) {
  if (error->domain == G_RESOLVER_ERROR) return reply_host_unreachable;
  for (const auto& row : k_error_replies) {
    if (g_error_matches(error, G_IO_ERROR, row.error)) return row.reply;
  }
  return reply_failed;
}

void serve_socks5(const Client& client) {
  if (!agree_on_no_authentication(client)) return;
  const std::optional<Endpoint> target = receive_target(client);
  if (!target) return;

  const std::string label = "socks5 CONNECT " + to_text(*target);
  log_event(label);
  g_autoptr(GError) error = nullptr;
  g_autoptr(GSocketConnection) upstream = connect_direct(*target, &error);
  if (upstream == nullptr) {
    return refuse(client, reply_for(error), label + " failed: " + error->message);
  }
  if (send_reply(client, reply_succeeded)) start_relay(client, upstream, label, Upload::passed_on);
}
