#include "desktop_entry.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "support/files.h"
#include "support/temporary_home.h"

namespace fs = std::filesystem;

// Pauses are counted instead of waited for.
static time_t g_seconds_paused = 0;

extern "C" int nanosleep(const timespec* duration, timespec*) {
  g_seconds_paused += duration->tv_sec;
  return 0;
}

// How other paths are quoted is tried with bundles in such folders.
TEST(DesktopEntryText, LeavesAPlainPathAsItIsAndHasNoFormForALineFeed) {
  EXPECT_EQ(lines_of(*desktop_entry_text("/opt/家/x")).at(5), "Exec=/opt/家/x");
  EXPECT_EQ(desktop_entry_text("/o\np/x"), std::nullopt);
}

TEST(DesktopEntryText, TouchCommandIsQuotedOnlyWhereItMustAndCut) {
  EXPECT_EQ(touch_command("/home/u/a.desktop"), "touch /home/u/a.desktop");
  EXPECT_EQ(touch_command("/home/u v/a$b"), "touch '/home/u v/a$b'");
  EXPECT_EQ(touch_command("/" + std::string(600, 'x')).size(), 511u);
}

static const std::vector<std::string> k_tools = {
    "update-desktop-database", "gtk-update-icon-cache", "gnome-shell",
    "kbuildsycoca5",           "xdg-desktop-menu",      "touch"};

TEST(DesktopEntry, InstallsAndRefreshesAsTheDesktopNeedsIt) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"ubuntu:GNOME", "x11", "gnome-shell --replace"},
      {"Unity", "wayland", nullptr},
      {"KDE", "x11", "kbuildsycoca5"},
      {"XFCE", "x11", nullptr},
  };
  for (const auto& [desktop, session_type, extra_command] : rows) {
    const TemporaryHome home;
    home.add_recorders(k_tools);
    setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    setenv("XDG_SESSION_TYPE", session_type, 1);
    umask(0077);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    g_seconds_paused = 0;
    install_desktop_entry();
    EXPECT_EQ(g_seconds_paused, 1);
    const std::string share = home.path() + "/.local/share";
    const std::string entry = share + "/applications/Corvana.desktop";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "已创建桌面入口文件: " + entry + "\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "警告: 图标文件未找到，桌面图标可能无法正常显示\n");
    EXPECT_EQ(fs::status(entry).permissions(), fs::perms(0755));
    EXPECT_EQ(read_file(entry), desktop_entry_text(get_executable_dir() + "/desktop_entry_test"));

    std::vector<std::string> expected = {"gtk-update-icon-cache -f -t " + share + "/icons/hicolor",
                                         "update-desktop-database " + share + "/applications",
                                         "touch " + entry, "xdg-desktop-menu forceupdate"};
    if (extra_command) expected.insert(expected.begin(), extra_command);
    // In dash "&>" runs a command in the background, so the order varies.
    for (int round = 0; round < 500 && home.recorded_commands().size() < expected.size(); ++round) {
      usleep(10000);
    }
    std::vector<std::string> commands = home.recorded_commands();
    std::sort(commands.begin(), commands.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(commands, expected) << desktop;
    EXPECT_TRUE(is_desktop_entry_created());
  }
}

TEST(DesktopEntry, SaysWhatStandsInItsWay) {
  const std::pair<const char*, const char*> rows[] = {
      {"", "无法获取HOME目录\n"},
      {"/dev/null", "创建桌面入口文件过程中出错: "},
      {"blocked", "无法创建桌面入口文件: blocked/"}};
  for (const auto& [home_variable, message] : rows) {
    const TemporaryHome home;
    home.add_recorders(k_tools);
    fs::create_directories("blocked/.local/share/applications/Corvana.desktop");
    setenv("HOME", home_variable, 1);
    testing::internal::CaptureStderr();
    install_desktop_entry();
    EXPECT_NE(testing::internal::GetCapturedStderr().find(message), std::string::npos) << message;
    EXPECT_TRUE(home.recorded_commands().empty());
  }
}
