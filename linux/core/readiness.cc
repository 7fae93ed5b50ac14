#include "core/readiness.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <chrono>
#include <cstdint>

#include "core/core_process.h"
#include "support/leaving.h"
#include "support/unique_fd.h"

using namespace std::chrono_literals;

static constexpr int k_process_probes = 30;
static constexpr int k_port_attempts = 40;
static constexpr auto k_pause = 100ms;
static constexpr auto k_pause_without_port = 1s;
static constexpr timeval k_attempt_timeout = {0, 100000};
static constexpr int k_max_port = 65535;

// If the port lies in the range of outgoing ports, connect() may choose it as the source port too
// and connect the socket to itself.
static bool is_connected_to_itself(int probe) {
  sockaddr_in own = {}, peer = {};
  socklen_t own_size = sizeof own, peer_size = sizeof peer;
  return getsockname(probe, reinterpret_cast<sockaddr*>(&own), &own_size) == 0 &&
         getpeername(probe, reinterpret_cast<sockaddr*>(&peer), &peer_size) == 0 &&
         own.sin_port == peer.sin_port && own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

static bool accepts_connection(int port) {
  if (port > k_max_port) return false;
  const UniqueFd probe(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!probe) return false;
  setsockopt(probe.get(), SOL_SOCKET, SO_RCVTIMEO, &k_attempt_timeout, sizeof k_attempt_timeout);
  setsockopt(probe.get(), SOL_SOCKET, SO_SNDTIMEO, &k_attempt_timeout, sizeof k_attempt_timeout);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
  return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
         !is_connected_to_itself(probe.get());
}

bool wait_for_core_process() {
  for (int round = 0; round < k_process_probes; ++round) {
    if (is_core_running()) return true;
    if (!sleep_unless_leaving(k_pause)) return false;
  }
  return false;
}

bool wait_for_core_port(int clash_port) {
  if (clash_port < 1) {
    return sleep_unless_leaving(k_pause_without_port) && is_core_running();
  }
  for (int attempt = 0; attempt < k_port_attempts; ++attempt) {
    if (accepts_connection(clash_port)) return true;
    if (!sleep_unless_leaving(k_pause)) return false;
  }
  return false;
}
