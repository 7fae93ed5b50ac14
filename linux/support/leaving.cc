#include "support/leaving.h"

#include <glib-unix.h>

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

// Apart from the main loop, which may be waiting for the very command that a signal should cut
// short.
static GMainContext* signal_context() {
  static GMainContext* const context = g_main_context_new();
  return context;
}

void leave_at_signal(int signal_number) {
  const auto on_signal = [](gpointer) -> gboolean {
    begin_leaving();
    return G_SOURCE_CONTINUE;
  };
  GSource* const source = g_unix_signal_source_new(signal_number);
  g_source_set_callback(source, on_signal, nullptr, nullptr);
  g_source_attach(source, signal_context());
  g_source_unref(source);
}

static void look_for_signals() {
  while (g_main_context_iteration(signal_context(), FALSE)) {
  }
}

bool is_leaving() {
  look_for_signals();
  const std::lock_guard<std::mutex> lock(g_leaving_mutex);
  return g_leaving;
}

bool sleep_unless_leaving(std::chrono::milliseconds duration) {
  std::unique_lock<std::mutex> lock(g_leaving_mutex);
  return !g_leaving_begun.wait_for(lock, duration, [] { return g_leaving; });
}
