#include "system_proxy/system_proxy.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/temporary_home.h"

// Only the commands that turn a backend on or off, in short.
static std::string outline_of(const std::vector<std::string>& commands) {
  std::string outline;
  for (const std::string& command : commands) {
    const std::string last_word = command.substr(command.rfind(' ') + 1);
    if (command.find(" mode ") != command.npos) outline += "gnome " + last_word + ";";
    if (command.find(" ProxyType ") != command.npos) outline += "kde " + last_word + ";";
    if (command.rfind("xfconf-query", 0) == 0) outline += "xfce;";
  }
  return outline;
}

static std::string console_of(void (*operation)()) {
  testing::internal::CaptureStdout();
  operation();
  return testing::internal::GetCapturedStdout();
}

static std::string set_line(const std::string& desktop) {
  return "[Corvana] 已设置系统代理 (DE=" + desktop + ", HTTP=7890, SOCKS=7890)\n";
}

static std::string unavailable_line(const std::string& desktop) {
  return "[Corvana] 桌面 backend 不可用（DE=" + desktop +
         "，gsettings/kwriteconfig/xfconf 都没匹配），仅写入 env 文件"
         " (~/.config/corvana/proxy.sh + ~/.config/environment.d/99-corvana.conf)。"
         " 已运行的浏览器需重启或手动设置代理 127.0.0.1:7890 才能生效。\n";
}

TEST(SystemProxy, ChoosesTheBackendsOfTheDesktop) {
  const std::string gsettings = "gsettings", kde_tool = "kwriteconfig6", xfce_tool = "xfconf-query";
  const struct {
    const char* desktop;
    std::vector<std::string> tools;
    const char* applied;
    const char* cleared;
    bool available;
  } rows[] = {
      {"gnome", {gsettings}, "gnome manual;", "gnome none;", true},
      {"mate", {gsettings}, "gnome manual;", "gnome none;", true},
      {"other", {gsettings}, "gnome manual;", "gnome none;", true},
      {"lxde", {gsettings}, "gnome manual;", "gnome none;", true},
      {"kde", {gsettings, kde_tool}, "kde 1;", "gnome none;kde 0;", true},
      {"kde", {kde_tool}, "kde 1;", "kde 0;", true},
      {"kde", {gsettings}, "gnome manual;", "gnome none;", true},
      {"xfce", {gsettings, xfce_tool}, "xfce;gnome manual;", "gnome none;gnome none;", true},
      {"xfce", {xfce_tool}, "xfce;", "", true},
      {"xfce", {gsettings}, "gnome manual;", "gnome none;", true},
      {"gnome", {kde_tool, xfce_tool}, "", "", false},
      {"lxde", {}, "", "", false},
      {"kde", {xfce_tool}, "", "", false},
  };
  for (const auto& row : rows) {
    const std::string de = row.desktop;
    const TemporaryHome home;
    home.allow_only({});
    home.add_stand_in("ps", "#!/bin/sh\n");
    home.add_recorders(row.tools);
    setenv("XDG_CURRENT_DESKTOP", row.desktop, 1);
    EXPECT_EQ(console_of([] { apply_system_proxy(7890, 7890); }),
              row.available ? set_line(de) : unavailable_line(de));
    EXPECT_EQ(outline_of(home.recorded_commands()), row.applied) << de;
    EXPECT_NE(read_file(".config/environment.d/99-corvana.conf"), "");

    write_file("commands", "");
    EXPECT_EQ(console_of(clear_system_proxy),
              row.available ? "[Corvana] 已清除系统代理 (DE=" + de + ")\n"
                            : "[Corvana] 桌面 backend 不可用，仅清理 env 文件 (DE=" + de + ")\n");
    EXPECT_EQ(outline_of(home.recorded_commands()), row.cleared) << de;
    EXPECT_EQ(read_file(".config/environment.d/99-corvana.conf"), "");
  }
}
