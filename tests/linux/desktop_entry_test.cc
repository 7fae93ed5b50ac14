#include "desktop_entry.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "desktop_entry_text.h"
#include "executable_dir.h"
#include "support/temporary_home.h"

namespace fs = std::filesystem;

static std::string exec_line(const std::string& path) {
  return lines_of(desktop_entry_text(path).value_or("\n\n\n\n\nnothing\n")).at(5);
}

TEST(DesktopEntryText, QuotesOnlyWhatTheFormatReserves) {
  const struct {
    const char* path;
    const char* line;
  } rows[] = {
      {"/opt/corvana/Corvana", "Exec=/opt/corvana/Corvana"},
      {"/opt/家/Corvana", "Exec=/opt/家/Corvana"},
      {"/opt/a b/Corvana", "Exec=\"/opt/a b/Corvana\""},
      {"/opt/100%/Corvana", "Exec=/opt/100%%/Corvana"},
      {"/o\"p$t`/x", "Exec=\"/o\\\\\"p\\\\$t\\\\`/x\""},
      {"/o\\p/x", "Exec=\"/o\\\\\\\\p/x\""},
      {"/o\tp/x", "Exec=\"/o\\tp/x\""},
      {"/o\np/x", "nothing"},
  };
  for (const auto& row : rows) EXPECT_EQ(exec_line(row.path), row.line) << row.path;
}

TEST(DesktopEntryText, TouchCommandIsQuotedOnlyWhereItMustAndCut) {
  EXPECT_EQ(touch_command("/home/u/a.desktop"), "touch /home/u/a.desktop");
  EXPECT_EQ(touch_command("/home/u v/a$b"), "touch '/home/u v/a$b'");
  EXPECT_EQ(touch_command("/" + std::string(600, 'x')).size(), 511u);
}

static const std::vector<std::string> k_tools = {"update-desktop-database", "gtk-update-icon-cache",
                                                 "gnome-shell", "kbuildsycoca5",
                                                 "xdg-desktop-menu"};

TEST(DesktopEntry, InstallsAndRefreshesAsTheDesktopNeedsIt) {
  const struct {
    const char* desktop;
    const char* session_type;
    const char* extra_command;
  } rows[] = {
      {"ubuntu:GNOME", "x11", "gnome-shell --replace"},
      {"ubuntu:GNOME", "wayland", nullptr},
      {"Unity", nullptr, nullptr},
      {"KDE", "x11", "kbuildsycoca5"},
      {"XFCE", "x11", nullptr},
      {nullptr, "x11", nullptr},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    home.add_recorders(k_tools);
    if (row.desktop) setenv("XDG_CURRENT_DESKTOP", row.desktop, 1);
    if (row.session_type) setenv("XDG_SESSION_TYPE", row.session_type, 1);
    umask(0077);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    install_desktop_entry();
    const std::string entry = home.path() + "/.local/share/applications/Corvana.desktop";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "已创建桌面入口文件: " + entry + "\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "警告: 图标文件未找到，桌面图标可能无法正常显示\n");
    struct stat status = {};
    ASSERT_EQ(stat(entry.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0755u);
    EXPECT_EQ(read_file(entry),
              desktop_entry_text(get_executable_dir() + "/desktop_entry_test").value());

    std::vector<std::string> expected = {
        "gtk-update-icon-cache -f -t " + home.path() + "/.local/share/icons/hicolor",
        "update-desktop-database " + home.path() + "/.local/share/applications",
        "xdg-desktop-menu forceupdate"};
    if (row.extra_command) expected.push_back(row.extra_command);
    // Some shells run the refreshes in the background, so their order is not ours to tell.
    for (int round = 0; round < 500 && home.recorded_commands().size() < expected.size(); ++round) {
      usleep(10000);
    }
    std::vector<std::string> commands = home.recorded_commands();
    std::sort(commands.begin(), commands.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(commands, expected) << (row.desktop ? row.desktop : "no desktop");
    EXPECT_TRUE(is_desktop_entry_created());
  }
}

TEST(DesktopEntry, SaysWhatStandsInItsWay) {
  const struct {
    const char* home;
    const char* blocker;  // made a directory
    const char* message;  // how the line on standard error begins
  } rows[] = {
      {nullptr, nullptr, "无法获取HOME目录\n"},
      {"", nullptr, "无法获取HOME目录\n"},
      {"/dev/null", nullptr, "创建桌面入口文件过程中出错: "},
      {"h", "h/.local/share/applications/Corvana.desktop", "无法创建桌面入口文件: h/"},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    home.add_recorders(k_tools);
    if (row.blocker) fs::create_directories(row.blocker);
    row.home ? setenv("HOME", row.home, 1) : unsetenv("HOME");
    testing::internal::CaptureStderr();
    install_desktop_entry();
    EXPECT_NE(testing::internal::GetCapturedStderr().find(row.message), std::string::npos)
        << row.message;
    EXPECT_TRUE(home.recorded_commands().empty());
  }
}
