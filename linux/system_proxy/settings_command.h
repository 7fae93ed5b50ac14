#ifndef CORVANA_SYSTEM_PROXY_SETTINGS_COMMAND_H_
#define CORVANA_SYSTEM_PROXY_SETTINGS_COMMAND_H_

#include <string>
#include <vector>

// `text` with the ports in the places of "{http}" and "{socks}". Pure.
std::string with_ports(std::string text, int http_port, int socks_port);

// A desktop's settings as shell commands with "{http}", "{socks}", and "{tool}" for the desktop's
// own tool.
struct SettingsCommands {
  std::vector<std::string> enable;
  std::vector<std::string> disable;
};

// Runs the commands of one direction one after the other, whatever their exit statuses. Enabling
// stops between two commands when the host begins to leave. Ports are written as given, without a
// range check. Blocks until the last command has ended. Any thread.
void run_settings_commands(const SettingsCommands& commands, int http_port, int socks_port,
                           bool enable, const std::string& tool = "");

#endif
