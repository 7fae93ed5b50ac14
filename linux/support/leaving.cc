#include "support/leaving.h"

#include <condition_variable>
#include <mutex>

// g_leaving_mutex owns g_leaving; the condition wakes those who sleep.
static std::mutex g_leaving_mutex;
static std::condition_variable g_leaving_begun;
static bool g_leaving = false;

void begin_leaving() {
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  g_leaving = true;
  g_leaving_begun.notify_all();
}

bool is_leaving() {
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  return g_leaving;
}

bool sleep_unless_leaving(std::chrono::milliseconds duration) {
  std::unique_lock<std::mutex> lock(g_leaving_mutex);
  return !g_leaving_begun.wait_for(lock, duration, [] { return g_leaving; });
}
