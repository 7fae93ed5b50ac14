#ifndef CORVANA_SAMPLE_CORE_ENDPOINT_H_
#define CORVANA_SAMPLE_CORE_ENDPOINT_H_

#include <cstdint>
#include <optional>
#include <string>

struct Endpoint {
  std::string host;  // a name or an address, an IPv6 one without brackets
  uint16_t port;
};

// All functions here may be called from any thread.

// True for a host that is safe to resolve and to log: UTF-8, not empty, nothing blank or
// unprintable.
bool is_valid_host(const std::string& host);

// Reads "host:port" or "[ipv6]:port"; without ":port" the port is `default_port`. Gives nothing
// when the host isn't valid or the port isn't within 1 to 65535.
std::optional<Endpoint> parse_endpoint(const std::string& text, uint16_t default_port);

// The opposite: "host:port", with brackets around an IPv6 address.
std::string to_text(const Endpoint& endpoint);

#endif
