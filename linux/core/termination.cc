#include "core/termination.h"

#include "support/shell_command.h"

void terminate_core() { run_shell_command("pkill -9 -f 'zant +run +-c' 2>/dev/null"); }
