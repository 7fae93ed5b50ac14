#include "endpoint.h"

#include <glib.h>

#include <algorithm>

bool is_valid_host(const std::string& host) {
  const auto is_blank = [](char c) { return c == ' ' || g_ascii_iscntrl(c); };
  return !host.empty() && g_utf8_validate(host.data(), static_cast<gssize>(host.size()), nullptr) &&
         std::none_of(host.begin(), host.end(), is_blank);
}

static bool is_bracketed(const std::string& host) {
  return host.size() > 2 && host.front() == '[' && host.back() == ']';
}

std::optional<Endpoint> parse_endpoint(const std::string& text, uint16_t default_port) {
  std::string host = text;
  guint64 port = default_port;
  const size_t colon = text.rfind(':');
  if (colon != std::string::npos && !is_bracketed(text)) {
    host = text.substr(0, colon);
    if (!g_ascii_string_to_unsigned(text.c_str() + colon + 1, 10, 1, G_MAXUINT16, &port, nullptr)) {
      return std::nullopt;
    }
  }
  if (is_bracketed(host)) {
    host = host.substr(1, host.size() - 2);
  } else if (host.find(':') != std::string::npos) {
    return std::nullopt;
  }
  if (port == 0 || !is_valid_host(host)) return std::nullopt;
  return Endpoint{host, static_cast<uint16_t>(port)};
}

std::string to_text(const Endpoint& endpoint) {
  const bool is_ipv6 = endpoint.host.find(':') != std::string::npos;
  return (is_ipv6 ? "[" + endpoint.host + "]" : endpoint.host) + ":" +
         std::to_string(endpoint.port);
}
