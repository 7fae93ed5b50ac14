#include "exit_cleanup.h"

#include <glib-unix.h>

#include <exception>
#include <functional>
#include <string>

#include "core/core_name.h"
#include "core/process_probe.h"
#include "core/stranded_proxy.h"
#include "core/termination.h"
#include "core/workers.h"
#include "support/console.h"
#include "support/leaving.h"

// Main thread only.
static bool g_workers_gone = true;

bool have_workers_gone() { return g_workers_gone; }

// One step's failure must not keep the next from its work.
static void attempt(const std::function<void()>& step) {
  try {
    step();
  } catch (const std::exception& error) {
    print_error_line(std::string("[Corvana] 退出清理未完成: ") + error.what());
  }
}

static void clean_up_core() {
  const bool core_runs = is_process_running(k_core_name);
  if (!core_runs && !is_proxy_stranded()) return;
  attempt(take_back_proxy);
  if (core_runs) attempt(terminate_core);
}

void announce_leaving(const char* line) {
  begin_leaving();
  attempt([line] { print_line(line); });
}

void leave_cleanly() {
  begin_leaving();
  // A worker's last desktop command may land late; only after that is ours sure to be the last. A
  // worker that was given up on once isn't waited for again.
  if (g_workers_gone) g_workers_gone = wait_for_workers();
  attempt(clean_up_core);
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
  // Those sources end with their first signal. A second Ctrl-C must not end the process in the
  // middle of the clean-up.
  watch_exit_signals();
}
