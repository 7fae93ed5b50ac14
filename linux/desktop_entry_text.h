#ifndef CORVANA_DESKTOP_ENTRY_TEXT_H_
#define CORVANA_DESKTOP_ENTRY_TEXT_H_

#include <optional>
#include <string>

// The desktop entry's whole text for a program at `exec_path`. A path with blanks or other
// characters that the Desktop Entry Specification reserves is quoted and escaped as that says; any
// other stands as it is. Nothing when no entry can carry the path: it holds a line feed. Pure.
std::optional<std::string> desktop_entry_text(const std::string& exec_path);

// The shell command that touches the entry at `entry_path`, the path quoted only where it has to
// be. Pure.
std::string touch_command(const std::string& entry_path);

#endif
