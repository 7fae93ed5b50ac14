#include "http_proxy.h"

#include <algorithm>

#include "http_message.h"
#include "log.h"
#include "relay.h"

// Headers that concern only the client's connection to this proxy. Transfer-Encoding is one in
// theory, but the body passes through in the client's own framing.
static constexpr const char* k_connection_headers[] = {
    "Connection", "Proxy-Connection", "Keep-Alive", "Proxy-Authenticate", "Proxy-Authorization",
    "TE",         "Upgrade",
};

static bool is_same_name(const std::string& a, const char* b) {
  return g_ascii_strcasecmp(a.c_str(), b) == 0;
}

static bool is_connection_header(const std::string& name) {
  return std::any_of(std::begin(k_connection_headers), std::end(k_connection_headers),
                     [&](const char* header) { return is_same_name(name, header); });
}

static bool has_header(const HttpRequest& request, const char* name) {
  return std::any_of(request.headers.begin(), request.headers.end(),
                     [&](const auto& header) { return is_same_name(header.first, name); });
}

static bool has_body(const HttpRequest& request) {
  return has_header(request, "Content-Length") || has_header(request, "Transfer-Encoding");
}

static bool opens_web_socket(const HttpRequest& request) {
  return has_header(request, "Upgrade") && has_header(request, "Sec-WebSocket-Key");
}

struct Destination {
  Endpoint server;
  std::string authority;  // the server as the client wrote it
  std::string path;
};

static std::optional<Destination> parse_absolute_form(const std::string& target) {
  const size_t scheme_size = target.find("://") + 3;
  const std::string scheme = target.substr(0, scheme_size);
  if (!is_same_name(scheme, "http://") && !is_same_name(scheme, "ws://")) return std::nullopt;
  const size_t path_start = std::min(target.find_first_of("/?#", scheme_size), target.size());
  std::string authority = target.substr(scheme_size, path_start - scheme_size);
  authority.erase(0, authority.rfind('@') + 1);  // npos + 1 is 0

  const std::optional<Endpoint> server = parse_endpoint(authority, 80);
  if (!server) return std::nullopt;
  const std::string path = target.substr(path_start, target.find('#') - path_start);
  return Destination{*server, authority, path.substr(0, 1) == "/" ? path : "/" + path};
}

// Asks the server to close, because the client's next request may be meant for another server. A
// web socket has to stay open. The version is the client's own, because the answer is passed on
// unchanged.
static std::string origin_request_head(const HttpRequest& request, const Destination& destination) {
  std::string head = request.method + " " + destination.path + " " + request.version +
                     "\r\nHost: " + destination.authority + "\r\n";
  for (const auto& [name, value] : request.headers) {
    if (is_connection_header(name) || is_same_name(name, "Host")) continue;
    head.append(name).append(": ").append(value).append("\r\n");
  }
  const bool upgrades = opens_web_socket(request);
  return head + (upgrades ? "Upgrade: websocket\r\nConnection: Upgrade" : "Connection: close") +
         "\r\n\r\n";
}

static GSocketConnection* connect_or_refuse(const Client& client, const Endpoint& server,
                                            const std::string& label) {
  log_event(label);
  g_autoptr(GError) error = nullptr;
  GSocketConnection* upstream = connect_direct(server, &error);
  if (upstream != nullptr) return upstream;
  log_event(label + " failed: " + error->message);
  const bool is_timeout = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
  send_http_error(client, is_timeout ? "504 Gateway Timeout" : "502 Bad Gateway", error->message);
  return nullptr;
}

static void refuse_target(const Client& client, const HttpRequest& request) {
  log_event("http " + request.method + " refused: bad target");
  send_http_error(client, "400 Bad Request",
                  "the target must be host:port or an http:// or ws:// address");
}

static void serve_connect(const Client& client, const HttpRequest& request) {
  const std::optional<Endpoint> server = parse_endpoint(request.target, 0);
  if (!server) return refuse_target(client, request);
  const std::string label = "http CONNECT " + to_text(*server);
  g_autoptr(GSocketConnection) upstream = connect_or_refuse(client, *server, label);
  if (upstream == nullptr) return;
  if (!send_bytes(client.connection, "HTTP/1.1 200 Connection established\r\n\r\n")) return;
  start_relay(client, upstream, label, Upload::passed_on);
}

static void serve_absolute_form(const Client& client, const HttpRequest& request) {
  const std::optional<Destination> destination = parse_absolute_form(request.target);
  if (!destination) return refuse_target(client, request);
  const std::string label = "http " + request.method + " " + to_text(destination->server);
  g_autoptr(GSocketConnection) upstream = connect_or_refuse(client, destination->server, label);
  if (upstream == nullptr) return;
  if (!send_bytes(upstream, origin_request_head(request, *destination))) {
    return send_http_error(client, "502 Bad Gateway", "the server takes no data");
  }
  // A server that doesn't close after all must not get requests that are meant for another one.
  const bool passes_on = has_body(request) || opens_web_socket(request);
  start_relay(client, upstream, label, passes_on ? Upload::passed_on : Upload::discarded);
}

void serve_http_proxy(const Client& client) {
  const std::optional<HttpRequest> request = receive_http_request(client);
  if (!request) return;
  if (request->method == "CONNECT") {
    serve_connect(client, *request);
  } else {
    serve_absolute_form(client, *request);
  }
}
