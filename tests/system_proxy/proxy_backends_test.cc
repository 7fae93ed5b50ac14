#include <gtest/gtest.h>

#include "support/temporary_home.h"
#include "system_proxy/gnome_proxy.h"
#include "system_proxy/kde_proxy.h"
#include "system_proxy/xfce_proxy.h"

using Words = std::vector<std::string>;

namespace {

// One direction of a backend on a desktop that has only these tools.
struct Run {
  Words tools;
  bool enable;
  bool result;
  Words commands;
};

}  // namespace

static Words commands(const std::string& start, const Words& ends, const Words& next = {}) {
  Words whole;
  for (const std::string& end : ends) whole.push_back(start + end);
  whole.insert(whole.end(), next.begin(), next.end());
  return whole;
}

static void expect_runs(bool (*apply)(int, int, bool), const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    const TemporaryHome home;
    home.allow_only({});
    home.add_recorders(run.tools);
    EXPECT_EQ(apply(7890, -1, run.enable), run.result);
    EXPECT_EQ(home.recorded_commands(), run.commands);
  }
}

static const Words k_gnome_on =
    commands("gsettings set org.gnome.system.proxy",
             {" mode manual", ".http host 127.0.0.1", ".http port 7890", ".http enabled true",
              ".https host 127.0.0.1", ".https port 7890", ".socks host 127.0.0.1",
              ".socks port -1", " ignore-hosts ['localhost', '127.0.0.1', '::1']"});
static const Words k_gnome_off =
    commands("gsettings set org.gnome.system.proxy",
             {" mode none", ".http enabled false", ".http host ", ".http port 0", ".https host ",
              ".https port 0", ".socks host ", ".socks port 0"});

TEST(ProxyBackends, Gnome) {
  expect_runs(apply_proxy_gnome, {{{"gsettings"}, true, true, k_gnome_on},
                                  {{"gsettings"}, false, true, k_gnome_off},
                                  {{}, true, false, {}}});
}

TEST(ProxyBackends, Kde) {
  const std::string end = " --file kioslaverc --group Proxy Settings --key ";
  const std::string five = "kwriteconfig5" + end, six = "kwriteconfig6" + end;
  const Words reread = {
      "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
      " string:"};
  const Words on = {"ProxyType 1", "httpProxy http://127.0.0.1:7890",
                    "httpsProxy http://127.0.0.1:7890", "socksProxy socks://127.0.0.1:-1",
                    "NoProxyFor localhost,127.0.0.1,::1"};
  const Words off = {"ProxyType 0", "httpProxy --delete", "httpsProxy --delete",
                     "socksProxy --delete"};
  const Words newest = {"kwriteconfig5", "kwriteconfig6", "dbus-send"};
  expect_runs(apply_proxy_kde,
              {{newest, true, true, commands(six, on, reread)},
               {newest, false, true, commands(six, off, reread)},
               {{"kwriteconfig5", "dbus-send"}, true, true, commands(five, on, reread)},
               {{"dbus-send"}, true, false, {}}});
}

TEST(ProxyBackends, Xfce) {
  const std::string set =
      "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s 127.0.0.1 -t int"
      " -s 7890 --create";
  expect_runs(apply_proxy_xfce,
              {{{"xfconf-query", "gsettings"}, true, true, commands(set, {""}, k_gnome_on)},
               {{"xfconf-query"}, true, true, {set}},
               {{"gsettings"}, true, false, {}},
               {{"xfconf-query", "gsettings"}, false, true, k_gnome_off},
               {{"xfconf-query"}, false, true, {}}});
}
