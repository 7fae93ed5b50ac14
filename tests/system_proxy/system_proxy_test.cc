#include "system_proxy/system_proxy.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/temporary_home.h"

namespace fs = std::filesystem;

static const char k_dropin[] = ".config/environment.d/99-corvana.conf";
static const char k_script[] = ".config/corvana/proxy.sh";

namespace {

// A desktop with some of the tools, and what they are called with.
struct Desktop {
  const char* name;
  std::vector<std::string> tools;
  std::string apply;
  std::string clear;
};

}  // namespace

static const std::string
    k_gnome_on =
        "G mode manual|G.http host 127.0.0.1|G.http port 7890|G.http enabled true"
        "|G.https host 127.0.0.1|G.https port 7890|G.socks host 127.0.0.1|G.socks port 1080"
        "|G ignore-hosts ['localhost', '127.0.0.1', '::1']|",
    k_gnome_off =
        "G mode none|G.http enabled false|G.http host |G.http port 0|G.https host |G.https port 0"
        "|G.socks host |G.socks port 0|",
    k_kio_signal =
        "dbus-send --type=signal /KIO/Scheduler org.kde.KIO.Scheduler.reparseSlaveConfiguration"
        " string:|",
    k_kde_on =
        "K ProxyType 1|K httpProxy http://127.0.0.1:7890|K httpsProxy http://127.0.0.1:7890"
        "|K socksProxy socks://127.0.0.1:1080|K NoProxyFor localhost,127.0.0.1,::1|" +
        k_kio_signal,
    k_kde_off = "K ProxyType 0|K httpProxy --delete|K httpsProxy --delete|K socksProxy --delete|" +
                k_kio_signal,
    k_xfce_on =
        "xfconf-query -c xfce4-session -p /general/ProxyHTTP -n -t string -s 127.0.0.1"
        " -t int -s 7890 --create|";

static const Desktop k_desktops[] = {
    {"gnome", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"gnome", {}, "", ""},
    {"mate", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"other", {}, "", ""},
    {"lxde", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"lxde", {}, "", ""},
    {"other", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"kde", {"gsettings", "kwriteconfig5"}, k_kde_on, k_gnome_off + k_kde_off},
    {"kde", {"kwriteconfig5"}, k_kde_on, k_kde_off},
    {"kde", {"kwriteconfig6"}, k_kde_on, k_kde_off},
    {"kde", {"kwriteconfig5", "kwriteconfig6"}, k_kde_on, k_kde_off},
    {"kde", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"kde", {}, "", ""},
    {"xfce", {"gsettings", "xfconf-query"}, k_xfce_on + k_gnome_on, k_gnome_off + k_gnome_off},
    {"xfce", {"xfconf-query"}, k_xfce_on, ""},
    {"xfce", {"gsettings"}, k_gnome_on, k_gnome_off},
    {"xfce", {}, "", ""},
};

// All that the tools were called with, in order. G and K stand for what is the same each time.
static std::string abbreviated_commands(const TemporaryHome& home) {
  std::string commands;
  for (std::string command : home.recorded_commands()) {
    for (const char* common : {"Ggsettings set org.gnome.system.proxy",
                               "Kkwriteconfig5 --file kioslaverc --group Proxy Settings --key",
                               "Kkwriteconfig6 --file kioslaverc --group Proxy Settings --key"}) {
      if (command.rfind(common + 1, 0) == 0) command.replace(0, strlen(common + 1), 1, *common);
    }
    commands += command + "|";
  }
  return commands;
}

TEST(SystemProxy, RunsTheToolsOfTheDesktopInOrderAndReports) {
  for (const Desktop& desktop : k_desktops) {
    const TemporaryHome home;
    home.allow_only({"ps"});
    home.add_recorders(desktop.tools);
    home.add_recorders({"dbus-send"});
    setenv("XDG_CURRENT_DESKTOP", desktop.name, 1);
    std::string report = std::string("[Corvana] 已设置系统代理 (DE=") + desktop.name +
                         ", HTTP=7890, SOCKS=1080)\n[Corvana] 已清除系统代理 (DE=" + desktop.name +
                         ")\n";
    if (desktop.tools.empty()) {
      report = std::string("[Corvana] 桌面 backend 不可用（DE=") + desktop.name +
               "，gsettings/kwriteconfig/xfconf 都没匹配），仅写入 env 文件"
               " (~/.config/corvana/proxy.sh + ~/.config/environment.d/99-corvana.conf)。"
               " 已运行的浏览器需重启或手动设置代理 127.0.0.1:7890 才能生效。\n"
               "[Corvana] 桌面 backend 不可用，仅清理 env 文件 (DE=" +
               desktop.name + ")\n";
    }
    umask(0077);
    testing::internal::CaptureStdout();
    apply_system_proxy(7890, 1080);
    // What shells and sessions make of both files is tried with the real tools, with one port.
    EXPECT_EQ(lines_of(read_file(k_dropin)).at(3), "all_proxy=socks5://127.0.0.1:1080");
    EXPECT_EQ(lines_of(read_file(k_script)).at(3), "export http_proxy=\"http://127.0.0.1:7890\"");
    EXPECT_EQ(lines_of(read_file(k_script)).at(7), "export all_proxy=\"socks5://127.0.0.1:1080\"");
    EXPECT_EQ(fs::status(k_script).permissions(), fs::perms(0644));
    clear_system_proxy();
    EXPECT_FALSE(fs::exists(k_dropin));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), report);
    EXPECT_EQ(abbreviated_commands(home), desktop.apply + desktop.clear) << desktop.name;
  }
}
