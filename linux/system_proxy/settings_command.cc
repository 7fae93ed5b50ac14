#include "system_proxy/settings_command.h"

#include "support/leaving.h"
#include "support/shell_command.h"

static void replace_placeholder(std::string& text, const std::string& placeholder,
                                const std::string& value) {
  const size_t position = text.find(placeholder);
  if (position != text.npos) text.replace(position, placeholder.size(), value);
}

void run_settings_commands(const SettingsCommands& commands, int http_port, int socks_port,
                           bool enable, const std::string& tool) {
  for (const SettingsCommand& command : enable ? commands.enable : commands.disable) {
    if (enable && is_leaving()) return;
    std::string text = command.format;
    replace_placeholder(text, "%s", tool);
    const int port = command.port == PortField::http ? http_port : socks_port;
    replace_placeholder(text, "%d", std::to_string(port));
    run_shell_command(text);
  }
}
