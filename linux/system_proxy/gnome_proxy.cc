#include "system_proxy/backends.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/settings_command.h"

// The mode goes first both ways: the desktop must already be off the proxy while hosts and ports
// are wiped.
static const SettingsCommands k_commands = {
    // enable
    {
        "gsettings set org.gnome.system.proxy mode 'manual'",
        "gsettings set org.gnome.system.proxy.http host '127.0.0.1'",
        "gsettings set org.gnome.system.proxy.http port {http}",
        "gsettings set org.gnome.system.proxy.http enabled true",
        "gsettings set org.gnome.system.proxy.https host '127.0.0.1'",
        "gsettings set org.gnome.system.proxy.https port {http}",
        "gsettings set org.gnome.system.proxy.socks host '127.0.0.1'",
        "gsettings set org.gnome.system.proxy.socks port {socks}",
        "gsettings set org.gnome.system.proxy ignore-hosts \"['localhost', '127.0.0.1', '::1']\"",
    },
    // disable
    {
        "gsettings set org.gnome.system.proxy mode 'none'",
        "gsettings set org.gnome.system.proxy.http enabled false",
        "gsettings set org.gnome.system.proxy.http host ''",
        "gsettings set org.gnome.system.proxy.http port 0",
        "gsettings set org.gnome.system.proxy.https host ''",
        "gsettings set org.gnome.system.proxy.https port 0",
        "gsettings set org.gnome.system.proxy.socks host ''",
        "gsettings set org.gnome.system.proxy.socks port 0",
    },
};

bool apply_proxy_gnome(int http_port, int socks_port, bool enable) {
  if (!has_command("gsettings")) return false;
  run_settings_commands(k_commands, http_port, socks_port, enable);
  return true;
}
