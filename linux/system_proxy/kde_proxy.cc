#include "support/shell_command.h"
#include "system_proxy/backends.h"
#include "system_proxy/desktop_environment.h"
#include "system_proxy/settings_command.h"

static const SettingsCommands k_commands = {
    // enable
    {
        "{tool} ProxyType 1",
        "{tool} httpProxy 'http://127.0.0.1:{http}'",
        "{tool} httpsProxy 'http://127.0.0.1:{http}'",
        "{tool} socksProxy 'socks://127.0.0.1:{socks}'",
        "{tool} NoProxyFor 'localhost,127.0.0.1,::1'",
    },
    // disable
    {
        "{tool} ProxyType 0",
        "{tool} httpProxy --delete",
        "{tool} httpsProxy --delete",
        "{tool} socksProxy --delete",
    },
};

static constexpr char k_tool_arguments[] = " --file kioslaverc --group 'Proxy Settings' --key";

static constexpr char k_reread_signal[] =
    "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
    " string: >/dev/null 2>&1";

bool apply_proxy_kde(int http_port, int socks_port, bool enable) {
  if (!has_command("kwriteconfig5") && !has_command("kwriteconfig6")) return false;
  const std::string tool = has_command("kwriteconfig6") ? "kwriteconfig6" : "kwriteconfig5";
  run_settings_commands(k_commands, http_port, socks_port, enable, tool + k_tool_arguments);
  run_shell_command(k_reread_signal);
  return true;
}
