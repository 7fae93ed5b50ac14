#include "system_proxy/desktop_environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/temporary_home.h"

TEST(DesktopEnvironment, FromTheSession) {
  const struct {
    const char* current_desktop;
    const char* session;
    const char* desktop;
  } rows[] = {
      {"ubuntu:GNOME", nullptr, "gnome"}, {"KDE", nullptr, "kde"},
      {"X-Cinnamon", nullptr, "gnome"},   {"XFCE", nullptr, "xfce"},
      {"MATE", nullptr, "mate"},          {"LXQt", nullptr, "lxde"},
      {"LXDE", nullptr, "lxde"},          {"Unity", nullptr, "gnome"},
      {"Budgie:GNOME", nullptr, "gnome"}, {"popkde", nullptr, "gnome"},
      {nullptr, "plasmawayland", "kde"},  {"", "pop", "gnome"},
      {"XFCE", "gnome", "xfce"},          {"sway", "gnome", "other"},
      {nullptr, nullptr, "other"},
  };
  const TemporaryHome home;
  home.add_stand_in("ps", "#!/bin/sh\n");
  for (const auto& row : rows) {
    row.current_desktop ? setenv("XDG_CURRENT_DESKTOP", row.current_desktop, 1)
                        : unsetenv("XDG_CURRENT_DESKTOP");
    row.session ? setenv("DESKTOP_SESSION", row.session, 1) : unsetenv("DESKTOP_SESSION");
    EXPECT_EQ(detect_desktop_environment(), row.desktop)
        << (row.current_desktop ? row.current_desktop : "unset");
  }
}

TEST(DesktopEnvironment, FromTheProcesses) {
  const struct {
    const char* processes;
    const char* desktop;
  } rows[] = {
      {"bash\ngnome-shell\nplasmashell\n", "kde"},
      {"gnome-shell\nxfce4-session\n", "gnome"},
      {"xfce4-session\n", "xfce"},
      {"mate-session\n", "mate"},
      {"cinnamon-sessio\n", "gnome"},
      {"lxqt-session\n", "lxde"},
      {"lxsession\n", "lxde"},
      {"Plasmashell\n", "other"},
      {"", "other"},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    write_file(home.path() + "/processes", row.processes);
    home.add_stand_in("ps", "#!/bin/sh\n[ \"$*\" = '-eo comm=' ] && cat ~/processes\n");
    EXPECT_EQ(detect_desktop_environment(), row.desktop) << row.processes;
  }
}

TEST(DesktopEnvironment, ProbesCommandsSilently) {
  const TemporaryHome home;
  home.allow_only({});
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_FALSE(has_command("gsettings"));
  home.add_stand_in("gsettings", "#!/bin/sh\n");
  EXPECT_TRUE(has_command("gsettings"));
  EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}
