#include "socks4.h"

#include "log.h"
#include "relay.h"

enum Reply : char { reply_granted = 90, reply_rejected = 91 };

static constexpr char k_connect_command = 1;
static constexpr gsize k_max_text_size = 255;

// The address after the code matters only to BIND.
static bool send_reply(const Client& client, Reply reply) {
  return send_bytes(client.connection, {0, reply, 0, 0, 0, 0, 0, 0});
}

static void refuse(const Client& client, const std::string& reason) {
  log_event(reason);
  send_reply(client, reply_rejected);
  close_gently(client);
}

// Reads up to the zero byte, which isn't part of the text. Nothing when the text is too long.
static std::optional<std::string> read_text(const Client& client) {
  std::string text;
  while (text.size() <= k_max_text_size) {
    const std::optional<std::string> byte = read_bytes(client, 1);
    if (!byte) return std::nullopt;
    if (byte->front() == '\0') return text;
    text += *byte;
  }
  return std::nullopt;
}

// An address of 0.0.0.x, where x isn't zero, announces a name: that is all that SOCKS4a adds.
static bool announces_name(const std::string& address) {
  return address.compare(0, 3, "\0\0\0", 3) == 0 && address[3] != '\0';
}

static std::string address_text(const std::string& address) {
  g_autoptr(GInetAddress) parsed = g_inet_address_new_from_bytes(
      reinterpret_cast<const guint8*>(address.data()), G_SOCKET_FAMILY_IPV4);
  g_autofree char* text = g_inet_address_to_string(parsed);
  return text;
}

// Gives nothing after a refusal or when the client has left.
static std::optional<Endpoint> receive_target(const Client& client) {
  const std::optional<std::string> request = read_bytes(client, 8);
  if (!request) return std::nullopt;
  const std::string address = request->substr(4);
  const bool is_named = announces_name(address);
  std::optional<std::string> host = read_text(client);  // the user
  if (host) host = is_named ? read_text(client) : address_text(address);
  const uint16_t port = port_in(request->substr(2, 2));
  if (request->at(1) != k_connect_command || !host || !is_valid_host(*host) || port == 0) {
    refuse(client, "socks4 refused: bad target, or not a CONNECT");
    return std::nullopt;
  }
  return Endpoint{*host, port};
}

void serve_socks4(const Client& client) {
  const std::optional<Endpoint> target = receive_target(client);
  if (!target) return;

  const std::string label = "socks4 CONNECT " + to_text(*target);
  log_event(label);
  g_autoptr(GError) error = nullptr;
  g_autoptr(GSocketConnection) upstream = connect_direct(*target, &error);
  if (upstream == nullptr) return refuse(client, label + " failed: " + error->message);
  if (send_reply(client, reply_granted)) start_relay(client, upstream, label, Upload::passed_on);
}
