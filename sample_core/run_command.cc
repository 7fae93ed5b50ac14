#include "run_command.h"

#include <gio/gio.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include "config.h"
#include "log.h"
#include "server.h"

struct RunOptions {
  std::string config_path;
  std::string directory;  // empty: no change
};

static std::string to_string(const char* text) { return text == nullptr ? "" : text; }

static std::optional<RunOptions> parse_options(int argc, char** argv, std::string* error) {
  g_autofree char* config_path = nullptr;
  g_autofree char* directory = nullptr;
  const GOptionEntry entries[] = {
      {"config", 'c', 0, G_OPTION_ARG_FILENAME, &config_path, "Configuration file", "FILE"},
      {"directory", 'D', 0, G_OPTION_ARG_FILENAME, &directory, "Working directory", "DIR"},
      {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr},
  };
  g_autoptr(GOptionContext) context = g_option_context_new("- run the proxy");
  g_option_context_add_main_entries(context, entries, nullptr);

  g_autoptr(GError) parse_error = nullptr;
  if (!g_option_context_parse(context, &argc, &argv, &parse_error)) {
    *error = parse_error->message;
  } else if (argc > 1) {
    *error = "unexpected argument: " + std::string(argv[1]);
  } else if (config_path == nullptr) {
    *error = "the option -c FILE is missing";
  } else {
    return RunOptions{config_path, to_string(directory)};
  }
  return std::nullopt;
}

static bool enter_directory(const std::string& directory, std::string* error) {
  if (directory.empty() || chdir(directory.c_str()) == 0) return true;
  *error = "cannot enter the directory " + directory + ": " + g_strerror(errno);
  return false;
}

static gboolean on_exit_signal(gpointer loop) {
  log_event("stopped");
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_CONTINUE;
}

static bool start(int argc, char** argv, std::string* error) {
  const std::optional<RunOptions> options = parse_options(argc, argv, error);
  if (!options) return false;
  // The configuration's path is relative to the directory before the change.
  const std::optional<CoreConfig> config = load_config(options->config_path, error);
  return config && enter_directory(options->directory, error) && start_server(*config, error);
}

int run_command(int argc, char** argv) {
  signal(SIGPIPE, SIG_IGN);
  g_autoptr(GMainLoop) loop = g_main_loop_new(nullptr, FALSE);
  g_unix_signal_add(SIGTERM, on_exit_signal, loop);
  g_unix_signal_add(SIGINT, on_exit_signal, loop);

  std::string error;
  if (!start(argc, argv, &error)) {
    print_error(error);
    return EXIT_FAILURE;
  }
  g_main_loop_run(loop);
  return EXIT_SUCCESS;
}
