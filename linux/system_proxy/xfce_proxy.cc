#include "system_proxy/backends.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/settings_command.h"

static const SettingsCommands k_commands = {
    // enable
    {
        "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s '127.0.0.1'"
        " -t int -s {http} --create >/dev/null 2>&1",
    },
    // disable: the property keeps its last value
    {},
};

bool apply_proxy_xfce(int http_port, int socks_port, bool enable) {
  if (!has_command("xfconf-query")) return false;
  run_settings_commands(k_commands, http_port, socks_port, enable);
  apply_proxy_gnome(http_port, socks_port, enable);
  return true;
}
