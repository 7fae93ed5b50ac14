#include "system_proxy/settings_command.h"

#include "support/leaving.h"
#include "support/shell_command.h"

static void replace_all(std::string& text, const std::string& placeholder,
                        const std::string& value) {
  for (size_t at = text.find(placeholder); at != text.npos; at = text.find(placeholder, at)) {
    text.replace(at, placeholder.size(), value);
  }
}

std::string with_ports(std::string text, int http_port, int socks_port) {
  replace_all(text, "{http}", std::to_string(http_port));
  replace_all(text, "{socks}", std::to_string(socks_port));
  return text;
}

void run_settings_commands(const SettingsCommands& commands, int http_port, int socks_port,
                           bool enable, const std::string& tool) {
  for (const std::string& command : enable ? commands.enable : commands.disable) {
    if (enable && is_leaving()) return;
    std::string text = with_ports(command, http_port, socks_port);
    replace_all(text, "{tool}", tool);
    run_shell_command(text);
  }
}
