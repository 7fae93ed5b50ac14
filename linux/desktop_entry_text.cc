#include "desktop_entry_text.h"

#include <glib.h>

#include <string_view>

static constexpr std::string_view k_reserved = " \t\r\"'\\><~|&;$*?#()`";
static constexpr std::string_view k_escaped_in_quotes = "\"`$\\";
static constexpr std::string_view k_special_in_shell = " \t\r\n\"'\\><~|&;$*?#()`[]{}";
static constexpr size_t k_touch_buffer_size = 512;

// What a key file itself escapes in any string value, on top of the quoting of an Exec line.
static std::string key_file_escaped(const std::string& text) {
  std::string escaped;
  for (const char byte : text) {
    if (byte == '\\') {
      escaped += "\\\\";
    } else if (byte == '\t') {
      escaped += "\\t";
    } else if (byte == '\r') {
      escaped += "\\r";
    } else {
      escaped += byte;
    }
  }
  return escaped;
}

// A percent sign starts a field code, so a plain one is written twice.
static std::string percent_doubled(const std::string& path) {
  std::string doubled;
  for (const char byte : path) doubled.append(byte == '%' ? 2 : 1, byte);
  return doubled;
}

static std::string exec_value(const std::string& path) {
  std::string argument = percent_doubled(path);
  if (argument.find_first_of(k_reserved) == argument.npos) return argument;
  std::string quoted = "\"";
  for (const char byte : argument) {
    if (k_escaped_in_quotes.find(byte) != k_escaped_in_quotes.npos) quoted += '\\';
    quoted += byte;
  }
  return key_file_escaped(quoted + "\"");
}

std::optional<std::string> desktop_entry_text(const std::string& exec_path) {
  if (exec_path.find('\n') != exec_path.npos) return std::nullopt;
  return "[Desktop Entry]\n"
         "Version=1.0\n"
         "Type=Application\n"
         "Name=Corvana\n"
         "Comment=Corvana VPN Client\n"
         "Exec=" +
         exec_value(exec_path) +
         "\n"
         "Icon=corvana\n"
         "Terminal=false\n"
         "Categories=Network;Utility;\n"
         "StartupWMClass=Corvana\n"
         "StartupNotify=true\n"
         "X-GNOME-UsesNotifications=true\n";
}

std::string touch_command(const std::string& entry_path) {
  if (entry_path.find_first_of(k_special_in_shell) == entry_path.npos) {
    return ("touch " + entry_path).substr(0, k_touch_buffer_size - 1);
  }
  // Never cut: the shell would complain about the missing end of the quotes.
  g_autofree gchar* quoted = g_shell_quote(entry_path.c_str());
  return std::string("touch ") + quoted;
}
