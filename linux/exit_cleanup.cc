#include "exit_cleanup.h"

#include <glib-unix.h>

#include "core/core_process.h"
#include "proxy_service/tasks.h"
#include "support/console.h"
#include "support/guarded.h"
#include "support/leaving.h"
#include "system_proxy/system_proxy.h"

// Belongs to the thread of leave_cleanly().
static bool g_worker_abandoned = false;

bool is_worker_abandoned() { return g_worker_abandoned; }

void announce_leaving(const char* line) {
  begin_leaving();
  run_guarded([line] { print_line(line); });
}

static void take_back_what_is_left() {
  const bool core_runs = is_core_running();
  // The core is killed even if clearing the proxy throws.
  if (core_runs || is_proxy_without_core()) run_guarded(clear_system_proxy);
  if (core_runs) terminate_core();
}

void leave_cleanly() {
  begin_leaving();
  // A worker's late command could set the proxy again, so the clean-up comes last. An abandoned
  // worker isn't waited for a second time.
  if (!g_worker_abandoned) g_worker_abandoned = !wait_for_workers();
  run_guarded(take_back_what_is_left);
}

static gboolean on_unix_exit_signal(gpointer user_data) {
  announce_leaving("[Corvana] 收到退出信号，清理系统代理后退出");
  leave_cleanly();
  g_application_quit(G_APPLICATION(user_data));
  return G_SOURCE_REMOVE;
}

void hook_exit_signals(GApplication* application) {
  for (const int signal_number : k_exit_signals) {
    g_unix_signal_add(signal_number, on_unix_exit_signal, application);
  }
  // Each source is removed by its first signal, which would restore the default action. This keeps
  // the signals caught, so that a second Ctrl-C can't end the process during the clean-up.
  watch_exit_signals();
}
