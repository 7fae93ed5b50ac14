#include "system_proxy/xfce_proxy.h"

#include <gtest/gtest.h>

#include "support/temporary_home.h"

static const char k_set_property[] =
    "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s 127.0.0.1 -t int -s 2080"
    " --create";

TEST(XfceProxy, SetsItsPropertyAndGnomesSettings) {
  const struct {
    std::vector<std::string> tools;
    bool enable;
    bool result;
    size_t commands;  // how many, the property's included
    bool sets_property;
  } rows[] = {
      {{"xfconf-query", "gsettings"}, true, true, 10, true},
      {{"xfconf-query"}, true, true, 1, true},
      {{"gsettings"}, true, false, 0, false},
      {{"xfconf-query", "gsettings"}, false, true, 8, false},
      {{"xfconf-query"}, false, true, 0, false},
  };
  for (const auto& row : rows) {
    const TemporaryHome home;
    home.allow_only({});
    home.add_recorders(row.tools);
    EXPECT_EQ(apply_proxy_xfce(2080, 2081, row.enable), row.result);
    const std::vector<std::string> commands = home.recorded_commands();
    ASSERT_EQ(commands.size(), row.commands);
    EXPECT_EQ(!commands.empty() && commands.front() == k_set_property, row.sets_property);
  }
}
