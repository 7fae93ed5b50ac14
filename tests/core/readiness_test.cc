#include "core/readiness.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "core/core_process.h"
#include "support/leaving.h"
#include "support/unique_fd.h"

using namespace std::chrono_literals;

// Stand-ins: no time passes, and the core appears when a case wants it to.
static std::chrono::milliseconds g_slept{};
static int g_probes = 0, g_attempts = 0, g_core_appears_at = 0, g_self_connections = 0;
static bool g_connects_to_itself = false;

bool sleep_unless_leaving(std::chrono::milliseconds duration) {
  g_slept += duration;
  return true;
}

bool is_core_running() { return ++g_probes == g_core_appears_at; }

extern "C" int connect(int socket, const sockaddr* address, socklen_t size) {
  ++g_attempts;
  if (g_connects_to_itself && bind(socket, address, size) == 0) ++g_self_connections;
  static const auto real = reinterpret_cast<decltype(&connect)>(dlsym(RTLD_NEXT, "connect"));
  return real(socket, address, size);
}

TEST(Readiness, WaitsForTheProcess) {
  g_core_appears_at = 30;
  EXPECT_TRUE(wait_for_core_process());
  EXPECT_EQ(g_slept, 2900ms);
  g_core_appears_at = g_probes = 0;
  EXPECT_FALSE(wait_for_core_process());
  EXPECT_EQ(g_probes, 30);
  EXPECT_EQ(g_slept, 2900ms + 3000ms);
}

TEST(Readiness, WaitsForThePort) {
  const UniqueFd listener(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = {AF_INET, htons(9090), {htonl(INADDR_LOOPBACK)}, {}};
  ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(listener.get(), 50), 0);
  const struct {
    int port;
    bool connects_to_itself;
    int core_appears_at;
    bool ready;
    std::chrono::milliseconds slept;
    int attempts;
  } rows[] = {
      {9090, false, 0, true, 0ms, 1},     {9091, false, 1, false, 4000ms, 40},
      {9091, true, 1, false, 4000ms, 40}, {9090 + 65536, false, 1, false, 4000ms, 0},
      {0, false, 1, true, 1000ms, 0},     {-9090, false, 0, false, 1000ms, 0},
  };
  for (const auto& row : rows) {
    g_slept = 0ms;
    g_probes = g_attempts = 0;
    g_connects_to_itself = row.connects_to_itself;
    g_core_appears_at = row.core_appears_at;
    EXPECT_EQ(wait_for_core_port(row.port), row.ready) << row.port;
    EXPECT_EQ(g_slept, row.slept) << row.port;
    EXPECT_EQ(g_attempts, row.attempts) << row.port;
  }
  EXPECT_GT(g_self_connections, 0);
}
