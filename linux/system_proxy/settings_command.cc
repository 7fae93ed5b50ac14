#include "system_proxy/settings_command.h"

#include "support/shell_command.h"

static void replace_placeholder(std::string& text, const std::string& placeholder,
                                const std::string& value) {
  const size_t position = text.find(placeholder);
  if (position != text.npos) text.replace(position, placeholder.size(), value);
}

void run_settings_commands(const std::vector<SettingsCommand>& commands, int http_port,
                           int socks_port, const std::string& tool) {
  for (const SettingsCommand& command : commands) {
    std::string text = command.format;
    replace_placeholder(text, "%s", tool);
    const int port = command.port == PortField::http ? http_port : socks_port;
    replace_placeholder(text, "%d", std::to_string(port));
    run_shell_command(text);
  }
}
