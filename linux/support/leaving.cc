#include "support/leaving.h"

#include <glib-unix.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// g_leaving_mutex owns g_leaving_since; the condition wakes those who sleep.
static std::mutex g_leaving_mutex;
static std::condition_variable g_leaving_begun;
static std::optional<steady_clock::time_point> g_leaving_since;

void begin_leaving() {
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  if (!g_leaving_since) g_leaving_since = steady_clock::now();
  g_leaving_begun.notify_all();
}

bool is_leaving() {
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  return g_leaving_since.has_value();
}

bool sleep_unless_leaving(milliseconds duration) {
  std::unique_lock<std::mutex> lock(g_leaving_mutex);
  return !g_leaving_begun.wait_for(lock, duration, [] { return g_leaving_since.has_value(); });
}

bool is_wait_over(steady_clock::time_point began, milliseconds limit) {
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  return g_leaving_since && steady_clock::now() - std::max(began, *g_leaving_since) >= limit;
}

// Not the main loop's context, which isn't run while the main thread waits for a command. Set on
// the main thread before there is a worker.
static GMainContext* g_signal_context = nullptr;

void watch_exit_signals() {
  const auto on_signal = [](gpointer) -> gboolean {
    begin_leaving();
    return G_SOURCE_CONTINUE;
  };
  g_signal_context = g_main_context_new();
  for (const int signal_number : k_exit_signals) {
    GSource* const source = g_unix_signal_source_new(signal_number);
    g_source_set_callback(source, on_signal, nullptr, nullptr);
    g_source_attach(source, g_signal_context);
    g_source_unref(source);
  }
}

void stop_watching_exit_signals() {
  for (const int signal_number : k_exit_signals) std::signal(signal_number, SIG_DFL);
}

void look_for_exit_signals() {
  if (g_signal_context == nullptr) return;
  while (g_main_context_iteration(g_signal_context, FALSE)) {
  }
}
