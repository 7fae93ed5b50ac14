#include "system_proxy/system_proxy.h"

#include <gtest/gtest.h>

#include "support/temporary_home.h"

TEST(SystemProxy, HttpAndSocksHavePortsOfTheirOwn) {
  const TemporaryHome home;
  home.add_recorders({"gsettings", "kwriteconfig5", "kwriteconfig6", "xfconf-query", "dbus-send"});
  for (const char* desktop : {"gnome", "kde", "xfce"}) {
    setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    apply_system_proxy(8080, 1080);
  }
  int http_ports = 0, socks_ports = 0;
  for (const std::string& command : home.recorded_commands()) {
    const bool is_socks = command.find("socks") != command.npos;
    http_ports += !is_socks && command.find("8080") != command.npos;
    socks_ports += is_socks && command.find("1080") != command.npos;
  }
  // GNOME's commands serve on XFCE as well.
  EXPECT_EQ(http_ports, 2 + 2 + 1 + 2);
  EXPECT_EQ(socks_ports, 1 + 1 + 1);
}
