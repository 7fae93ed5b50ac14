#include "exit_cleanup.h"

#include <gio/gio.h>
#include <glib-unix.h>

#include <csignal>
#include <exception>
#include <string>

#include "core/core_name.h"
#include "core/process_probe.h"
#include "core/termination.h"
#include "core/workers.h"
#include "support/console.h"
#include "support/leaving.h"
#include "system_proxy/system_proxy.h"

static constexpr int k_exit_signals[] = {SIGTERM, SIGINT, SIGHUP};

// Main thread only.
static bool g_workers_gone = true;

bool have_workers_gone() { return g_workers_gone; }

// One step's failure must not keep the next from its work.
static void attempt(void (*step)()) {
  try {
    step();
  } catch (const std::exception& error) {
    print_error_line(std::string("[Corvana] 退出清理未完成: ") + error.what());
  }
}

static void clean_up_core() {
  const bool core_runs = is_process_running(k_core_name);
  if (!core_runs && !is_proxy_without_core()) return;
  // The proxy goes first: with the core dead and the proxy still set, the desktop has no internet.
  attempt(clear_system_proxy);
  note_proxy_without_core(false);
  if (core_runs) attempt(terminate_core);
}

void leave_cleanly() {
  begin_leaving();
  // A worker's last desktop command may land late; only after that is ours sure to be the last. A
  // worker that was given up on once isn't waited for again.
  if (g_workers_gone) g_workers_gone = wait_for_workers();
  attempt(clean_up_core);
}

static gboolean ignore_signal(gpointer) { return G_SOURCE_CONTINUE; }

// Once a source of a signal is gone, the signal would end the process at once: a second Ctrl-C
// would leave the proxy behind.
static void keep_signals_from_ending_the_process() {
  for (const int signal_number : k_exit_signals) {
    g_unix_signal_add(signal_number, ignore_signal, nullptr);
  }
}

gboolean on_unix_exit_signal(gpointer user_data) {
  keep_signals_from_ending_the_process();
  attempt([] { print_line("[Corvana] 收到退出信号，清理系统代理后退出"); });
  leave_cleanly();
  g_application_quit(G_APPLICATION(user_data));
  return G_SOURCE_REMOVE;
}

void hook_exit_signals(gpointer application) {
  for (const int signal_number : k_exit_signals) {
    g_unix_signal_add(signal_number, on_unix_exit_signal, application);
  }
}
