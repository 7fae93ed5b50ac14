#include "system_proxy/settings_command.h"

#include "support/leaving.h"
#include "support/shell_command.h"

static void replace_placeholder(std::string& command, const std::string& placeholder,
                                const std::string& value) {
  const size_t position = command.find(placeholder);
  if (position != command.npos) command.replace(position, placeholder.size(), value);
}

void run_settings_commands(const SettingsCommands& commands, int http_port, int socks_port,
                           bool enable, const std::string& tool) {
  for (std::string command : enable ? commands.enable : commands.disable) {
    if (enable && is_leaving()) return;
    replace_placeholder(command, "{tool}", tool);
    replace_placeholder(command, "{http}", std::to_string(http_port));
    replace_placeholder(command, "{socks}", std::to_string(socks_port));
    run_shell_command(command);
  }
}
