#include "host_process/host_process.h"

using Lines = std::vector<std::string>;

namespace {

// One connect and one disconnect on a desktop with some of the tools.
struct Road {
  const char* name;
  const char* session;  // XDG_CURRENT_DESKTOP
  const char* desktop;
  Lines tools;
  Lines apply;  // names of command lists, see commands_of
  Lines clear;
};

void PrintTo(const Road& road, std::ostream* out) { *out << road.name; }

class ProxyRoads : public HostTest, public testing::WithParamInterface<Road> {};

}  // namespace

static Lines commands_of(const std::string& list, const std::string& port) {
  if (list == "gnome on") {
    return {"gsettings set org.gnome.system.proxy mode manual",
            "gsettings set org.gnome.system.proxy.http host 127.0.0.1",
            "gsettings set org.gnome.system.proxy.http port " + port,
            "gsettings set org.gnome.system.proxy.http enabled true",
            "gsettings set org.gnome.system.proxy.https host 127.0.0.1",
            "gsettings set org.gnome.system.proxy.https port " + port,
            "gsettings set org.gnome.system.proxy.socks host 127.0.0.1",
            "gsettings set org.gnome.system.proxy.socks port " + port,
            "gsettings set org.gnome.system.proxy ignore-hosts"
            " ['localhost', '127.0.0.1', '::1']"};
  }
  if (list == "gnome off") {
    return {"gsettings set org.gnome.system.proxy mode none",
            "gsettings set org.gnome.system.proxy.http enabled false",
            "gsettings set org.gnome.system.proxy.http host ",
            "gsettings set org.gnome.system.proxy.http port 0",
            "gsettings set org.gnome.system.proxy.https host ",
            "gsettings set org.gnome.system.proxy.https port 0",
            "gsettings set org.gnome.system.proxy.socks host ",
            "gsettings set org.gnome.system.proxy.socks port 0"};
  }
  if (list == "xfce on") {
    return {
        "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s 127.0.0.1"
        " -t int -s " +
        port + " --create"};
  }
  const std::string key =
      "kwriteconfig" + list.substr(3, 1) + " --file kioslaverc --group Proxy Settings --key ";
  const std::string signal =
      "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
      " string:";
  if (list == "kde5 on" || list == "kde6 on") {
    return {key + "ProxyType 1",
            key + "httpProxy http://127.0.0.1:" + port,
            key + "httpsProxy http://127.0.0.1:" + port,
            key + "socksProxy socks://127.0.0.1:" + port,
            key + "NoProxyFor localhost,127.0.0.1,::1",
            signal};
  }
  return {key + "ProxyType 0", key + "httpProxy --delete", key + "httpsProxy --delete",
          key + "socksProxy --delete", signal};
}

static Lines commands_of(const Lines& lists, const std::string& port) {
  Lines commands;
  for (const std::string& list : lists) {
    for (const std::string& command : commands_of(list, port)) commands.push_back(command);
  }
  return commands;
}

static Lines host_lines(const std::string& console) {
  Lines lines;
  for (const std::string& line : lines_of(console)) {
    if (line.rfind("[Corvana] ", 0) == 0 || line == "已停止代理服务") lines.push_back(line);
  }
  return lines;
}

static void append(Lines& lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
}

TEST_P(ProxyRoads, RunsTheToolsInOrderAndReports) {
  const Road& road = GetParam();
  setenv("XDG_CURRENT_DESKTOP", road.session, 1);
  home_.allow_only({"nohup", "ps"});
  home_.add_recorders(road.tools);
  home_.add_recorders({"dbus-send"});
  home_.add_stand_in("pkill", "#!/bin/sh\necho \"pkill $*\" >>" + home_.path() +
                                  "/commands\nexec /usr/bin/pkill \"$@\"\n");
  ChildProcess host(connecting({"--quit"}));
  ASSERT_EQ(0, host.wait_for_exit().value_or(-1)) << host.console();

  const std::string port = std::to_string(mixed_port_);
  const Lines clear = commands_of(road.clear, port);
  Lines commands = clear;  // at start-up
  append(commands, commands_of(road.apply, port));
  append(commands, clear);
  commands.push_back("pkill -9 -f zant +run +-c");
  EXPECT_EQ(commands, home_.recorded_commands());

  const std::string desktop = std::string("(DE=") + road.desktop;
  const std::string run_dir = home_.path() + "/.local/share/Corvana/run";
  std::string applied =
      "[Corvana] 已设置系统代理 " + desktop + ", HTTP=" + port + ", SOCKS=" + port + ")";
  std::string cleared = "[Corvana] 已清除系统代理 " + desktop + ")";
  if (road.tools.empty()) {
    applied = std::string("[Corvana] 桌面 backend 不可用（DE=") + road.desktop +
              "，gsettings/kwriteconfig/xfconf 都没匹配），仅写入 env 文件"
              " (~/.config/corvana/proxy.sh + ~/.config/environment.d/99-corvana.conf)。"
              " 已运行的浏览器需重启或手动设置代理 127.0.0.1:" +
              port + " 才能生效。";
    cleared = "[Corvana] 桌面 backend 不可用，仅清理 env 文件 " + desktop + ")";
  }
  const Lines expected = {
      cleared,
      "[Corvana] 执行(zant): nohup " CORVANA_BUNDLE "/bin/zant run -c " + config_ + " -D " +
          run_dir + " > " + run_dir + "/runtime.log 2>&1 &",
      "[Corvana] zant 启动成功，clash_api=" + std::to_string(clash_port_) + " mixed=" + port,
      applied,
      cleared,
      "已停止代理服务"};
  EXPECT_EQ(expected, host_lines(host.console()));
}

static const char k_k5[] = "kwriteconfig5", k_k6[] = "kwriteconfig6", k_xfconf[] = "xfconf-query",
                  k_gsettings[] = "gsettings";

static const Road k_roads[] = {
    {"Gnome", "ubuntu:GNOME", "gnome", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"GnomeBare", "GNOME", "gnome", {}, {}, {}},
    {"Kde5", "KDE", "kde", {k_gsettings, k_k5}, {"kde5 on"}, {"gnome off", "kde5 off"}},
    {"Kde5Only", "KDE", "kde", {k_k5}, {"kde5 on"}, {"kde5 off"}},
    {"Kde6Only", "KDE", "kde", {k_k6}, {"kde6 on"}, {"kde6 off"}},
    {"KdeBoth", "KDE", "kde", {k_gsettings, k_k5, k_k6}, {"kde6 on"}, {"gnome off", "kde6 off"}},
    {"KdeGsettings", "KDE", "kde", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"KdeBare", "KDE", "kde", {}, {}, {}},
    {"Xfce",
     "XFCE",
     "xfce",
     {k_gsettings, k_xfconf},
     {"xfce on", "gnome on"},
     {"gnome off", "gnome off"}},
    {"XfceOnly", "XFCE", "xfce", {k_xfconf}, {"xfce on"}, {}},
    {"XfceGsettings", "XFCE", "xfce", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"XfceBare", "XFCE", "xfce", {}, {}, {}},
    {"Mate", "MATE", "mate", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"MateBare", "MATE", "mate", {}, {}, {}},
    {"Lxde", "LXQt", "lxde", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"LxdeBare", "LXDE", "lxde", {}, {}, {}},
    {"Other", "sway", "other", {k_gsettings}, {"gnome on"}, {"gnome off"}},
    {"OtherBare", "sway", "other", {}, {}, {}},
};

INSTANTIATE_TEST_SUITE_P(Desktops, ProxyRoads, testing::ValuesIn(k_roads),
                         [](const auto& road) { return std::string(road.param.name); });
