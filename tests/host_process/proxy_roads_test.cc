#include "host_process/host_process.h"

using Words = std::vector<std::string>;

namespace {

// One connect and one disconnect on a desktop with some of the tools.
struct Road {
  const char* desktop;
  Words tools;
  std::string apply;  // the commands, abbreviated
  std::string clear;
};

void PrintTo(const Road& road, std::ostream* out) {
  *out << road.desktop;
  for (const std::string& tool : road.tools) *out << '-' << tool;
}

class ProxyRoads : public HostTest, public testing::WithParamInterface<Road> {};

}  // namespace

// All that the tools were called with, in order. G and K stand for what is the same each time.
static std::string abbreviated_commands(const Words& tools) {
  const std::string kde_tool = tools.empty() ? "none" : tools.back();
  return output_of("sed -e 's/^gsettings set org.gnome.system.proxy/G/' -e 's/^" + kde_tool +
                   " --file kioslaverc --group Proxy Settings --key/K/' commands | tr '\\n' '|'");
}

TEST_P(ProxyRoads, RunsTheToolsInOrderAndReports) {
  const Road& road = GetParam();
  setenv("XDG_CURRENT_DESKTOP", road.desktop, 1);
  home_.allow_only({"nohup", "ps", "grep", "sed", "tr"});
  home_.add_recorders(road.tools);
  home_.add_recorders({"dbus-send"});
  home_.add_stand_in("pkill",
                     "#!/bin/sh\necho pkill \"$@\" >>commands\nexec /usr/bin/pkill \"$@\"\n");
  ChildProcess host(connecting({"--quit"}));
  ASSERT_EQ(0, host.wait_for_exit().value_or(-1)) << host.console();
  // The proxy is cleared at start-up too.
  EXPECT_EQ(road.clear + road.apply + road.clear + "pkill -9 -f zant +run +-c|",
            abbreviated_commands(road.tools));

  const std::string de = std::string("(DE=") + road.desktop, none = "[Corvana] 桌面 backend 不可用";
  std::string applied = "[Corvana] 已设置系统代理 " + de + ", HTTP=7890, SOCKS=7890)\n";
  std::string cleared = "[Corvana] 已清除系统代理 " + de + ")\n";
  if (road.tools.empty()) {
    applied = none + "（DE=" + road.desktop +
              "，gsettings/kwriteconfig/xfconf 都没匹配），仅写入 env 文件"
              " (~/.config/corvana/proxy.sh + ~/.config/environment.d/99-corvana.conf)。"
              " 已运行的浏览器需重启或手动设置代理 127.0.0.1:7890 才能生效。\n";
    cleared = none + "，仅清理 env 文件 " + de + ")\n";
  }
  const std::string run_dir = home_.path() + "/.local/share/Corvana/run";
  EXPECT_EQ(cleared + "[Corvana] 执行(zant): nohup " CORVANA_BUNDLE "/bin/zant run -c " + config_ +
                " -D " + run_dir + " > " + run_dir + "/runtime.log 2>&1 &\n" +
                "[Corvana] zant 启动成功，clash_api=9090 mixed=7890\n" + applied + cleared +
                "已停止代理服务\n",
            output_of("grep -E '^(\\[Corvana\\]|已停止)' console-1"));
}

static const std::string
    k_gnome_on =
        "G mode manual|G.http host 127.0.0.1|G.http port 7890|G.http enabled true"
        "|G.https host 127.0.0.1|G.https port 7890|G.socks host 127.0.0.1|G.socks port 7890"
        "|G ignore-hosts ['localhost', '127.0.0.1', '::1']|",
    k_gnome_off =
        "G mode none|G.http enabled false|G.http host |G.http port 0|G.https host |G.https port 0"
        "|G.socks host |G.socks port 0|",
    k_kio_signal =
        "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
        " string:|",
    k_kde_on =
        "K ProxyType 1|K httpProxy http://127.0.0.1:7890|K httpsProxy http://127.0.0.1:7890"
        "|K socksProxy socks://127.0.0.1:7890|K NoProxyFor localhost,127.0.0.1,::1|" +
        k_kio_signal,
    k_kde_off = "K ProxyType 0|K httpProxy --delete|K httpsProxy --delete|K socksProxy --delete|" +
                k_kio_signal,
    k_xfce_on =
        "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s 127.0.0.1"
        " -t int -s 7890 --create|";

static const Road k_gnome_roads[] = {
    {"gnome", {"gsettings"}, k_gnome_on, k_gnome_off}, {"gnome", {}, "", ""},
    {"mate", {"gsettings"}, k_gnome_on, k_gnome_off},  {"other", {}, "", ""},
    {"lxde", {"gsettings"}, k_gnome_on, k_gnome_off},  {"lxde", {}, "", ""},
    {"other", {"gsettings"}, k_gnome_on, k_gnome_off},
};

static const Road k_kde_roads[] = {
    {"kde", {"gsettings", "kwriteconfig5"}, k_kde_on, k_gnome_off + k_kde_off},
    {"kde", {"kwriteconfig5"}, k_kde_on, k_kde_off},
    {"kde", {"kwriteconfig6"}, k_kde_on, k_kde_off},
    {"kde", {"kwriteconfig5", "kwriteconfig6"}, k_kde_on, k_kde_off},
    {"kde", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"kde", {}, "", ""},
};

static const Road k_xfce_roads[] = {
    {"xfce", {"gsettings", "xfconf-query"}, k_xfce_on + k_gnome_on, k_gnome_off + k_gnome_off},
    {"xfce", {"xfconf-query"}, k_xfce_on, ""},
    {"xfce", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"xfce", {}, "", ""},
};

INSTANTIATE_TEST_SUITE_P(Gnome, ProxyRoads, testing::ValuesIn(k_gnome_roads));
INSTANTIATE_TEST_SUITE_P(Kde, ProxyRoads, testing::ValuesIn(k_kde_roads));
INSTANTIATE_TEST_SUITE_P(Xfce, ProxyRoads, testing::ValuesIn(k_xfce_roads));
