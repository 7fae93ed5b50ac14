#include "core/readiness.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <chrono>
#include <cstdint>

#include "core/core_name.h"
#include "core/process_probe.h"
#include "support/leaving.h"
#include "support/unique_fd.h"

using namespace std::chrono_literals;

static constexpr int k_process_probes = 30;
static constexpr int k_port_attempts = 40;
static constexpr auto k_pause = 100ms;
static constexpr auto k_pause_without_port = 1s;
static constexpr timeval k_attempt_timeout = {0, 100000};

static bool accepts_connection(int port) {
  const UniqueFd probe(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!probe) return false;
  setsockopt(probe.get(), SOL_SOCKET, SO_RCVTIMEO, &k_attempt_timeout, sizeof k_attempt_timeout);
  setsockopt(probe.get(), SOL_SOCKET, SO_SNDTIMEO, &k_attempt_timeout, sizeof k_attempt_timeout);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  inet_pton(AF_INET, "127.0.0.1", &address.sin_addr);
  return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool wait_for_core_process() {
  for (int round = 0; round < k_process_probes; ++round) {
    if (is_process_running(k_core_name)) return true;
    if (!sleep_unless_leaving(k_pause)) return false;
  }
  return false;
}

bool wait_for_core_port(int clash_port) {
  if (clash_port < 1) {
    return sleep_unless_leaving(k_pause_without_port) && is_process_running(k_core_name);
  }
  for (int attempt = 0; attempt < k_port_attempts; ++attempt) {
    if (accepts_connection(clash_port)) return true;
    if (!sleep_unless_leaving(k_pause)) return false;
  }
  return false;
}
