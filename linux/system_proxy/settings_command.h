#ifndef CORVANA_SYSTEM_PROXY_SETTINGS_COMMAND_H_
#define CORVANA_SYSTEM_PROXY_SETTINGS_COMMAND_H_

#include <string>
#include <vector>

enum class PortField { none, http, socks };

// One line of a desktop's settings: a shell command in which "%s" stands for the desktop's own tool
// and "%d" for the port that `port` names.
struct SettingsCommand {
  const char* format;
  PortField port = PortField::none;
};

struct SettingsCommands {
  std::vector<SettingsCommand> enable;
  std::vector<SettingsCommand> disable;
};

// Runs one direction's commands through the shell, one after the other, whatever becomes of each.
// Enabling stops between two commands when the host begins to leave. Ports are written as given,
// without a range check. Blocks until the last has ended. Any thread.
void run_settings_commands(const SettingsCommands& commands, int http_port, int socks_port,
                           bool enable, const std::string& tool = "");

#endif
