// A program that runs at login: takes back a proxy that the client has set and that a power cut or
// a killed session has left without a core.
#include <glib.h>

#include <optional>
#include <string>

#include "core/core_process.h"
#include "support/console.h"
#include "support/guarded.h"
#include "support/leaving.h"
#include "support/shell_command.h"
#include "system_proxy/proxy_env_files.h"
#include "system_proxy/system_proxy.h"

// The status to end with at once; nothing when there are no arguments.
static std::optional<int> handle_arguments(int argc, char** argv) {
  gboolean wants_version = FALSE;
  const GOptionEntry entries[] = {
      {"version", 0, 0, G_OPTION_ARG_NONE, &wants_version, "Print the version and end", nullptr},
      {}};
  g_autoptr(GOptionContext) context = g_option_context_new("- take back a proxy without a core");
  g_option_context_add_main_entries(context, entries, nullptr);
  g_autoptr(GError) error = nullptr;
  if (!g_option_context_parse(context, &argc, &argv, &error)) {
    print_error_line(error->message);
    return 2;
  }
  if (argc > 1) {
    print_error_line(std::string("Unexpected argument ") + argv[1]);
    return 2;
  }
  if (!wants_version) return std::nullopt;
  print_line("corvana-proxy-reset " CORVANA_VERSION);
  return 0;
}

int main(int argc, char** argv) {
  keep_standard_streams_open();
  prepare_signals();
  const auto status = handle_arguments(argc, argv);
  if (status) return *status;
  // Switches on the time limits of leaving, so that a tool that hangs can't hold up the login.
  begin_leaving();
  run_guarded([] {
    if (is_environment_dropin_there() && !is_core_running()) clear_system_proxy();
  });
  return 0;
}
