#include "system_proxy/kde_proxy.h"

#include "support/shell_command.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/settings_command.h"

static const SettingsCommands k_commands = {
    {
        {"%s --file kioslaverc --group 'Proxy Settings' --key ProxyType 1"},
        {"%s --file kioslaverc --group 'Proxy Settings' --key httpProxy 'http://127.0.0.1:%d'",
         PortField::http},
        {"%s --file kioslaverc --group 'Proxy Settings' --key httpsProxy 'http://127.0.0.1:%d'",
         PortField::http},
        {"%s --file kioslaverc --group 'Proxy Settings' --key socksProxy 'socks://127.0.0.1:%d'",
         PortField::socks},
        {"%s --file kioslaverc --group 'Proxy Settings' --key NoProxyFor "
         "'localhost,127.0.0.1,::1'"},
    },
    {
        {"%s --file kioslaverc --group 'Proxy Settings' --key ProxyType 0"},
        {"%s --file kioslaverc --group 'Proxy Settings' --key httpProxy --delete"},
        {"%s --file kioslaverc --group 'Proxy Settings' --key httpsProxy --delete"},
        {"%s --file kioslaverc --group 'Proxy Settings' --key socksProxy --delete"},
    }};

static const char k_reread_signal[] =
    "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
    " string: >/dev/null 2>&1";

bool apply_proxy_kde(int http_port, int socks_port, bool enable) {
  if (!has_command("kwriteconfig5") && !has_command("kwriteconfig6")) return false;
  const char* const tool = has_command("kwriteconfig6") ? "kwriteconfig6" : "kwriteconfig5";
  run_settings_commands(k_commands, http_port, socks_port, enable, tool);
  run_shell_command(k_reread_signal);
  return true;
}
