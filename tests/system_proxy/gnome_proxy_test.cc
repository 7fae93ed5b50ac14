#include "system_proxy/gnome_proxy.h"

#include <gtest/gtest.h>

#include "support/temporary_home.h"

using Commands = std::vector<std::string>;

TEST(GnomeProxy, RunsItsCommandsInOrder) {
  const struct {
    bool enable;
    Commands commands;
  } rows[] = {
      {true,
       {"gsettings set org.gnome.system.proxy mode manual",
        "gsettings set org.gnome.system.proxy.http host 127.0.0.1",
        "gsettings set org.gnome.system.proxy.http port 7890",
        "gsettings set org.gnome.system.proxy.http enabled true",
        "gsettings set org.gnome.system.proxy.https host 127.0.0.1",
        "gsettings set org.gnome.system.proxy.https port 7890",
        "gsettings set org.gnome.system.proxy.socks host 127.0.0.1",
        "gsettings set org.gnome.system.proxy.socks port -1",
        "gsettings set org.gnome.system.proxy ignore-hosts ['localhost', '127.0.0.1', '::1']"}},
      {false,
       {"gsettings set org.gnome.system.proxy mode none",
        "gsettings set org.gnome.system.proxy.http enabled false",
        "gsettings set org.gnome.system.proxy.http host ",
        "gsettings set org.gnome.system.proxy.http port 0",
        "gsettings set org.gnome.system.proxy.https host ",
        "gsettings set org.gnome.system.proxy.https port 0",
        "gsettings set org.gnome.system.proxy.socks host ",
        "gsettings set org.gnome.system.proxy.socks port 0"}},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    home.add_recorders({"gsettings"});
    EXPECT_TRUE(apply_proxy_gnome(7890, -1, row.enable));
    EXPECT_EQ(home.recorded_commands(), row.commands);
  }
}

TEST(GnomeProxy, NeedsItsTool) {
  const TemporaryHome home;
  home.allow_only({});
  EXPECT_FALSE(apply_proxy_gnome(7890, 7890, true));
  EXPECT_FALSE(apply_proxy_gnome(0, 0, false));
}
