#include "core/termination.h"

#include <atomic>

#include "support/shell_command.h"

// Written by the workers, read by the main thread on its way out.
static std::atomic<bool> g_proxy_without_core{false};

void terminate_core() { run_shell_command("pkill -9 -f 'zant +run +-c' 2>/dev/null"); }

void note_proxy_without_core(bool left_without_core) { g_proxy_without_core = left_without_core; }

bool is_proxy_without_core() { return g_proxy_without_core; }
