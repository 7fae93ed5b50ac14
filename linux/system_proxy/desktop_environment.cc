#include "system_proxy/desktop_environment.h"

#include <glib.h>

#include <cstdlib>

#include "support/shell_command.h"

namespace {

struct DesktopToken {
  const char* token;
  const char* desktop;
};

}  // namespace

// The first token found decides, so the order counts in both tables.
static constexpr DesktopToken k_session_tokens[] = {
    {"gnome", "gnome"},    {"unity", "gnome"}, {"ubuntu", "gnome"}, {"pop", "gnome"},
    {"cinnamon", "gnome"}, {"kde", "kde"},     {"plasma", "kde"},   {"xfce", "xfce"},
    {"mate", "mate"},      {"lxde", "lxde"},   {"lxqt", "lxde"},
};

// The kernel keeps 15 characters of a name, hence the odd end of Cinnamon's.
static constexpr DesktopToken k_process_tokens[] = {
    {"plasmashell", "kde"},   {"gnome-shell", "gnome"},     {"xfce4-session", "xfce"},
    {"mate-session", "mate"}, {"cinnamon-sessio", "gnome"}, {"lxqt-session", "lxde"},
    {"lxsession", "lxde"},
};

template <size_t count>
static std::string first_match(const DesktopToken (&tokens)[count], const std::string& text) {
  for (const DesktopToken& row : tokens) {
    if (text.find(row.token) != text.npos) return row.desktop;
  }
  return "";
}

std::string environment_value(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

std::string desktop_from_session_name(const std::string& session_name) {
  // Not std::tolower, which depends on the locale.
  g_autofree gchar* lower = g_ascii_strdown(session_name.c_str(), -1);
  return first_match(k_session_tokens, lower);
}

std::string desktop_from_process_names(const std::string& process_names) {
  std::string desktop = first_match(k_process_tokens, process_names);
  return desktop.empty() ? "other" : desktop;
}

std::string detect_desktop_environment() {
  std::string session_name = environment_value("XDG_CURRENT_DESKTOP");
  if (session_name.empty()) session_name = environment_value("DESKTOP_SESSION");
  std::string desktop = desktop_from_session_name(session_name);
  if (!desktop.empty()) return desktop;
  return desktop_from_process_names(command_output("ps -eo comm= 2>/dev/null"));
}

bool has_command(const std::string& name) {
  return shell_command_succeeds("command -v " + name + " >/dev/null 2>&1");
}
