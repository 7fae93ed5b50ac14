#include "system_proxy/desktop_environment.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/temporary_home.h"

using Rows = std::vector<std::pair<const char*, const char*>>;

TEST(DesktopEnvironment, FromTheNames) {
  const Rows sessions = {
      {"ubuntu:GNOME", "gnome"}, {"KDE", "kde"},      {"X-Cinnamon", "gnome"},  {"XFCE", "xfce"},
      {"MATE", "mate"},          {"LXQt", "lxde"},    {"LXDE", "lxde"},         {"Unity", "gnome"},
      {"popkde", "gnome"},       {"ubuntu", "gnome"}, {"plasmawayland", "kde"}, {"sway", ""}};
  for (const auto& [name, desktop] : sessions) EXPECT_EQ(desktop_from_session_name(name), desktop);

  const Rows processes = {{"bash\ngnome-shell\nplasmashell\n", "kde"},
                          {"gnome-shell\nxfce4-session\n", "gnome"},
                          {"mate-session\nxfce4-session\n", "xfce"},
                          {"cinnamon-sessio\nmate-session\n", "mate"},
                          {"cinnamon-sessio\n", "gnome"},
                          {"lxqt-session\n", "lxde"},
                          {"lxsession\n", "lxde"},
                          {"Plasmashell\n", "other"}};
  for (const auto& [names, desktop] : processes) {
    EXPECT_EQ(desktop_from_process_names(names), desktop) << names;
  }
}

TEST(DesktopEnvironment, AsksTheSessionThenTheProcesses) {
  const TemporaryHome home;
  home.add_stand_in("ps", "#!/bin/sh\n[ \"$*\" = '-eo comm=' ] && echo xfce4-session\n");
  EXPECT_EQ(detect_desktop_environment(), "xfce");
  setenv("DESKTOP_SESSION", "plasma", 1);
  EXPECT_EQ(detect_desktop_environment(), "kde");
  setenv("XDG_CURRENT_DESKTOP", "", 1);
  EXPECT_EQ(detect_desktop_environment(), "kde");
  setenv("XDG_CURRENT_DESKTOP", "sway", 1);
  EXPECT_EQ(detect_desktop_environment(), "xfce") << "an unknown one hides the session's name";
  setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
  EXPECT_EQ(detect_desktop_environment(), "gnome");
}
