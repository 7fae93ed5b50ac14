#include "system_proxy/system_proxy.h"

#include <atomic>
#include <string>

#include "support/console.h"
#include "support/leaving.h"
#include "system_proxy/backends.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/proxy_env_files.h"

// Workers and the main thread read and write it.
static std::atomic<bool> g_proxy_without_core{false};

void note_proxy_without_core() { g_proxy_without_core = true; }

bool is_proxy_without_core() { return g_proxy_without_core; }

static bool apply_desktop_backend(const std::string& desktop, int http_port, int socks_port) {
  bool applied = false;
  for (const Backend& backend : k_backends) {
    if (desktop == backend.desktop) applied = backend.apply(http_port, socks_port, true);
  }
  return applied || apply_proxy_gnome(http_port, socks_port, true);
}

// GNOME's settings are cleared on every desktop, because they are the last resort of each.
static bool clear_desktop_backends(const std::string& desktop) {
  bool cleared = apply_proxy_gnome(0, 0, false);
  for (const Backend& backend : k_backends) {
    if (desktop != backend.desktop || backend.apply == apply_proxy_gnome) continue;
    cleared |= backend.apply(0, 0, false);
  }
  return cleared;
}

void apply_system_proxy(int http_port, int socks_port) {
  const std::string desktop = detect_desktop_environment();
  const bool applied = apply_desktop_backend(desktop, http_port, socks_port);
  // Some settings may be missing now; the start that called this clears the proxy.
  if (is_leaving()) return;
  write_systemd_environment_dropin(http_port, socks_port, true);
  write_proxy_env_file(http_port, socks_port, true);
  g_proxy_without_core = false;
  const std::string http = std::to_string(http_port);
  if (applied) {
    print_line("[Corvana] 已设置系统代理 (DE=" + desktop + ", HTTP=" + http +
               ", SOCKS=" + std::to_string(socks_port) + ")");
  } else {
    print_line("[Corvana] 桌面 backend 不可用（DE=" + desktop +
               "，gsettings/kwriteconfig/xfconf 都没匹配），仅写入 env 文件"
               " (~/.config/corvana/proxy.sh + ~/.config/environment.d/99-corvana.conf)。"
               " 已运行的浏览器需重启或手动设置代理 127.0.0.1:" +
               http + " 才能生效。");
  }
}

void clear_system_proxy() {
  const std::string desktop = detect_desktop_environment();
  const bool cleared = clear_desktop_backends(desktop);
  write_systemd_environment_dropin(0, 0, false);
  write_proxy_env_file(0, 0, false);
  g_proxy_without_core = false;
  if (cleared) {
    print_line("[Corvana] 已清除系统代理 (DE=" + desktop + ")");
  } else {
    print_line("[Corvana] 桌面 backend 不可用，仅清理 env 文件 (DE=" + desktop + ")");
  }
}
