#ifndef CORVANA_DESKTOP_ENTRY_H_
#define CORVANA_DESKTOP_ENTRY_H_

#include <optional>
#include <string>

// True once install_desktop_entry has run in this process, whatever came of it. Main thread.
bool is_desktop_entry_created();

// Installs the icon and the desktop entry for the current user, replacing older ones, and asks the
// desktop to reread its menus. Reports on the console and doesn't throw. Blocks for more than a
// second when it succeeds. Main thread.
void install_desktop_entry();

// The desktop entry's text for a program at `exec_path`. A path with blanks or other characters
// that the Desktop Entry Specification reserves is quoted and escaped; any other stands as it is.
// Nothing for a path with a line feed, which no entry can carry. Pure.
std::optional<std::string> desktop_entry_text(const std::string& exec_path);

// The shell command that touches the entry at `entry_path`. The path is quoted only where it has to
// be; without quotes the command is cut after 511 bytes. Pure.
std::string touch_command(const std::string& entry_path);

#endif
