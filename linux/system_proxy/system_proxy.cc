#include "system_proxy/system_proxy.h"

#include <string>

#include "support/console.h"
#include "support/leaving.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/gnome_proxy.h"
#include "system_proxy/kde_proxy.h"
#include "system_proxy/proxy_env_files.h"
#include "system_proxy/xfce_proxy.h"

static bool uses_gnome_settings(const std::string& desktop) {
  return desktop == "gnome" || desktop == "mate" || desktop == "cinnamon" || desktop == "other";
}

static bool apply_desktop_backend(const std::string& desktop, int http_port, int socks_port) {
  bool applied = false;
  if (uses_gnome_settings(desktop)) applied = apply_proxy_gnome(http_port, socks_port, true);
  if (desktop == "kde") applied = apply_proxy_kde(http_port, socks_port, true);
  if (desktop == "xfce") applied = apply_proxy_xfce(http_port, socks_port, true);
  // Many programs of other desktops read GNOME's settings too.
  return applied || apply_proxy_gnome(http_port, socks_port, true);
}

static bool clear_desktop_backends(const std::string& desktop) {
  bool cleared = apply_proxy_gnome(0, 0, false);
  if (desktop == "kde") cleared |= apply_proxy_kde(0, 0, false);
  if (desktop == "xfce") cleared |= apply_proxy_xfce(0, 0, false);
  return cleared;
}

void apply_system_proxy(int http_port, int socks_port) {
  const std::string desktop = detect_desktop_environment();
  const bool applied = apply_desktop_backend(desktop, http_port, socks_port);
  // Leaving may have cut that short, and takes it back; nothing more is set or said to be.
  if (is_leaving()) return;
  write_systemd_environment_dropin(http_port, socks_port, true);
  write_proxy_env_file(http_port, socks_port, true);
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
  if (cleared) {
    print_line("[Corvana] 已清除系统代理 (DE=" + desktop + ")");
  } else {
    print_line("[Corvana] 桌面 backend 不可用，仅清理 env 文件 (DE=" + desktop + ")");
  }
}
