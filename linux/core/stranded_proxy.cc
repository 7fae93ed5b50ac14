#include "core/stranded_proxy.h"

#include <atomic>

#include "system_proxy/system_proxy.h"

// Written by the workers, read by the main thread on its way out.
static std::atomic<bool> g_proxy_stranded{false};

void note_stranded_proxy(bool stranded) { g_proxy_stranded = stranded; }

bool is_proxy_stranded() { return g_proxy_stranded; }

void take_back_proxy() {
  clear_system_proxy();
  note_stranded_proxy(false);
}
