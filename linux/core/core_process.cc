#include "core/core_process.h"

#include <string>

#include "core/process_probe.h"
#include "support/shell_command.h"

bool is_core_running() { return is_process_running(k_core_name); }

bool terminate_core() {
  return shell_command_succeeds(std::string("pkill -9 -f '") + k_core_name +
                                " +run +-c' 2>/dev/null");
}
