#ifndef CORVANA_SYSTEM_PROXY_DESKTOP_ENVIRONMENT_H_
#define CORVANA_SYSTEM_PROXY_DESKTOP_ENVIRONMENT_H_

#include <string>

// The environment variable's value; "" when it is unset. Any thread.
std::string environment_value(const char* name);

// Names the desktop that the user runs: "gnome", "kde", "xfce", "mate", "lxde" or "other". Found
// out afresh each time, from the session's environment or else from the processes that run; may
// block for one shell. Any thread.
std::string detect_desktop_environment();

// The same from the text of XDG_CURRENT_DESKTOP or DESKTOP_SESSION, in any letter case; "" when it
// holds no name that we know. Pure.
std::string desktop_from_session_name(const std::string& session_name);

// The same from a list of process names as the kernel keeps them. Pure.
std::string desktop_from_process_names(const std::string& process_names);

// True when the shell finds the command. `name` goes into the shell's text as it is. Blocks for one
// shell. Any thread.
bool has_command(const std::string& name);

#endif
