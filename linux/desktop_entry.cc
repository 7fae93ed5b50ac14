#include "desktop_entry.h"

#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include "support/console.h"
#include "support/files.h"
#include "support/shell_command.h"
#include "support/unique_fd.h"

namespace fs = std::filesystem;

static constexpr std::string_view k_reserved_in_exec = " \t\r\"'\\><~|&;$*?#()`";
static constexpr std::string_view k_escaped_in_quotes = "\"`$\\";
static constexpr std::string_view k_needs_shell_quotes = " \t\r\n\"'\\><~|&;$*?#()`[]{}";
static constexpr size_t k_max_touch_size = 511;

static std::string with_escapes(const std::string& text, std::string_view escaped, char escape) {
  std::string result;
  for (const char byte : text) {
    if (escaped.find(byte) != escaped.npos) result += escape;
    result += byte;
  }
  return result;
}

// `text` as a key file's string value: a backslash before each backslash, "\t" for a tab, "\r" for
// a carriage return. An Exec value is quoted first, then escaped.
static std::string key_file_escaped(const std::string& text) {
  std::string escaped = with_escapes(text, "\\\t\r", '\\');
  std::replace(escaped.begin(), escaped.end(), '\t', 't');
  std::replace(escaped.begin(), escaped.end(), '\r', 'r');
  return escaped;
}

static std::string exec_value(const std::string& path) {
  // A percent sign starts a field code, so a plain one is written twice.
  std::string argument = with_escapes(path, "%", '%');
  if (argument.find_first_of(k_reserved_in_exec) == argument.npos) return argument;
  return key_file_escaped("\"" + with_escapes(argument, k_escaped_in_quotes, '\\') + "\"");
}

std::optional<std::string> desktop_entry_text(const std::string& exec_path) {
  if (exec_path.find('\n') != exec_path.npos) return std::nullopt;
  return "[Desktop Entry]\nVersion=1.0\nType=Application\nName=Corvana\n"
         "Comment=Corvana VPN Client\nExec=" +
         exec_value(exec_path) +
         "\nIcon=corvana\nTerminal=false\nCategories=Network;Utility;\n"
         "StartupWMClass=Corvana\nStartupNotify=true\nX-GNOME-UsesNotifications=true\n";
}

std::string touch_command(const std::string& entry_path) {
  if (entry_path.find_first_of(k_needs_shell_quotes) == entry_path.npos) {
    return ("touch " + entry_path).substr(0, k_max_touch_size);
  }
  // Never cut: the shell would complain about the missing end of the quotes.
  g_autofree gchar* quoted = g_shell_quote(entry_path.c_str());
  return std::string("touch ") + quoted;
}

// Main thread only.
static bool desktop_entry_created = false;

bool is_desktop_entry_created() { return desktop_entry_created; }

static bool contains_ignoring_case(const char* text, const char* word) {
  return text != nullptr && strcasestr(text, word) != nullptr;
}

// The old file stays until the copy is whole. Other launches may do the same at this moment.
static void replace_with_copy(const std::string& source, const std::string& target) {
  std::string copy = target + ".XXXXXX";
  const UniqueFd reserved(mkstemp(copy.data()));
  std::error_code error(reserved ? 0 : errno, std::generic_category());
  if (!error) fs::copy_file(source, copy, fs::copy_options::overwrite_existing, error);
  if (!error) fs::rename(copy, target, error);
  if (!error) return;
  std::error_code ignored;
  fs::remove(copy, ignored);
  throw fs::filesystem_error("cannot copy file", source, target, error);
}

static void install_icon(const std::string& source, const std::string& target) {
  try {
    if (!fs::exists(source)) {
      print_error_line("警告: 图标文件未找到，桌面图标可能无法正常显示");
      return;
    }
    replace_with_copy(source, target);
    print_line("已复制图标到标准位置: " + target);
  } catch (const std::exception& error) {
    print_error_line(std::string("复制图标到标准位置失败: ") + error.what());
  }
}

static std::string choose_exec_path() {
  std::string preferred = get_executable_dir() + "/Corvana";
  if (path_exists(preferred)) return preferred;
  char running[PATH_MAX];
  return realpath("/proc/self/exe", running) == nullptr ? preferred : running;
}

static const char* refresh_command_of_desktop() {
  const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
  for (const char* shell_desktop : {"GNOME", "UNITY", "UBUNTU"}) {
    if (!contains_ignoring_case(desktop, shell_desktop)) continue;
    // On Wayland the shell can't be replaced without ending the session.
    const bool on_x11 = contains_ignoring_case(std::getenv("XDG_SESSION_TYPE"), "x11");
    return on_x11 ? "gnome-shell --replace &" : nullptr;
  }
  return contains_ignoring_case(desktop, "KDE") ? "kbuildsycoca5 &> /dev/null" : nullptr;
}

// In dash "&>" doesn't redirect: it starts the tool in the background, so it isn't waited for.
static void refresh_menus(const std::string& entry_path) {
  run_shell_command("update-desktop-database ~/.local/share/applications &> /dev/null");
  run_shell_command("gtk-update-icon-cache -f -t ~/.local/share/icons/hicolor &> /dev/null");
  const char* const desktop_command = refresh_command_of_desktop();
  if (desktop_command != nullptr) run_shell_command(desktop_command);
  run_shell_command(touch_command(entry_path));
  run_shell_command("xdg-desktop-menu forceupdate &> /dev/null");
}

static void install_below(const std::string& home) {
  const std::string applications_dir = home + "/.local/share/applications";
  const std::string icons_dir = home + "/.local/share/icons/hicolor/128x128/apps";
  fs::create_directories(applications_dir);
  fs::create_directories(icons_dir);
  install_icon(get_executable_dir() + "/logo.png", icons_dir + "/corvana.png");

  const std::string entry_path = applications_dir + "/Corvana.desktop";
  const auto text = desktop_entry_text(choose_exec_path());
  if (!text || !write_whole_file(entry_path, *text)) {
    print_error_line("无法创建桌面入口文件: " + entry_path);
    return;
  }
  chmod(entry_path.c_str(), 0755);
  print_line("已创建桌面入口文件: " + entry_path);
  refresh_menus(entry_path);
  // Desktops that watch the directory need a moment before the window asks for its icon.
  std::this_thread::sleep_for(std::chrono::seconds(1));
}

void install_desktop_entry() {
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    print_error_line("无法获取HOME目录");
  } else {
    try {
      install_below(home);
    } catch (const std::exception& error) {
      print_error_line(std::string("创建桌面入口文件过程中出错: ") + error.what());
    }
  }
  desktop_entry_created = true;
}
