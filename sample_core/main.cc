#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "log.h"
#include "run_command.h"
#include "version.h"

struct Command {
  const char* name;
  int (*function)(int argc, char** argv);
  const char* description;
};

static int version_command(int argc, char** argv) {
  if (argc > 1) {
    print_error("unexpected argument: " + std::string(argv[1]));
    return EXIT_FAILURE;
  }
  printf("sample core version %s\n", k_core_version);
  return EXIT_SUCCESS;
}

static const Command k_commands[] = {
    {"run", run_command, "Run the proxy: run -c FILE [-D DIR]"},
    {"version", version_command, "Print the version"},
};

static int print_usage(const char* program) {
  printf("Usage: %s COMMAND [OPTION…]\n\nCommands:\n", program);
  for (const Command& command : k_commands) {
    printf("  %-10s%s\n", command.name, command.description);
  }
  return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
  g_autofree char* program = g_path_get_basename(argc > 0 ? argv[0] : "");
  const std::string name = argc > 1 ? argv[1] : "--help";
  if (name == "--help" || name == "-h") return print_usage(program);
  g_set_prgname((std::string(program) + " " + name).c_str());
  for (const Command& command : k_commands) {
    if (name == command.name) return command.function(argc - 1, argv + 1);
  }
  print_error("unknown command: " + name + " (try --help)");
  return EXIT_FAILURE;
}
