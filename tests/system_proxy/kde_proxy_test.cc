#include "system_proxy/kde_proxy.h"

#include <gtest/gtest.h>

#include "support/temporary_home.h"

static std::vector<std::string> expected_commands(const std::string& tool, bool enable) {
  const std::string set = tool + " --file kioslaverc --group Proxy Settings --key ";
  const std::string reread =
      "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
      " string:";
  if (!enable) {
    return {set + "ProxyType 0", set + "httpProxy --delete", set + "httpsProxy --delete",
            set + "socksProxy --delete", reread};
  }
  return {set + "ProxyType 1",
          set + "httpProxy http://127.0.0.1:2080",
          set + "httpsProxy http://127.0.0.1:2080",
          set + "socksProxy socks://127.0.0.1:2081",
          set + "NoProxyFor localhost,127.0.0.1,::1",
          reread};
}

TEST(KdeProxy, RunsItsCommandsInOrderWithTheNewestTool) {
  const struct {
    std::vector<std::string> tools;
    const char* used;
  } rows[] = {
      {{"kwriteconfig5"}, "kwriteconfig5"},
      {{"kwriteconfig6"}, "kwriteconfig6"},
      {{"kwriteconfig5", "kwriteconfig6"}, "kwriteconfig6"},
  };
  for (const auto& row : rows) {
    for (const bool enable : {true, false}) {
      const TemporaryHome home;
      home.allow_only({});
      home.add_recorders({"dbus-send"});
      home.add_recorders(row.tools);
      EXPECT_TRUE(apply_proxy_kde(2080, 2081, enable));
      EXPECT_EQ(home.recorded_commands(), expected_commands(row.used, enable));
    }
  }
}

TEST(KdeProxy, NeedsOneOfItsTools) {
  const TemporaryHome home;
  home.allow_only({});
  home.add_recorders({"dbus-send"});
  EXPECT_FALSE(apply_proxy_kde(1, 1, true));
  EXPECT_TRUE(home.recorded_commands().empty());
}
