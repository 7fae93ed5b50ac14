#include <signal.h>

#include "host_process/host_process.h"

namespace {

struct HostileHome {
  const char* name;
  const char* preparation;  // a shell script, run in the home
  const char* outcome = "[Corvana] 已设置系统代理 (DE=gnome, ";
};

void PrintTo(const HostileHome& home, std::ostream* out) { *out << home.name; }

class HostileHomes : public HostTest, public testing::WithParamInterface<HostileHome> {};

}  // namespace

// Connects and leaves by a signal. Whatever the home is like, the console tells of all three steps.
TEST_P(HostileHomes, EndNothingAndHangNothing) {
  setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
  home_.add_recorders({"gsettings"});
  ChildProcess host(connecting(
      {}, {"sh", "-c",
           std::string("mkdir user; cd user; HOME=$PWD; dangle() for link; do"
                       " mkdir -p \"${link%/*}\"; ln -s /nowhere/at/all \"$link\"; done; ") +
               GetParam().preparation + "; exec \"$0\" \"$@\""}));
  EXPECT_TRUE(host.wait_for("[Corvana] 已清除系统代理 (DE=gnome)")) << host.console();
  EXPECT_TRUE(host.wait_for(GetParam().outcome)) << host.console();
  kill(host.pid(), SIGTERM);
  EXPECT_EQ(0, host.wait_for_exit().value_or(-1)) << host.console();
  EXPECT_EQ("", host.still_running());
  EXPECT_FALSE(does_core_run());
  EXPECT_TRUE(host.wait_for("收到退出信号")) << host.console();
  EXPECT_EQ("gsettings set org.gnome.system.proxy.socks port 0", home_.recorded_commands().back());
}

static const HostileHome k_homes[] = {
    {"Unset", "unset HOME"},
    {"Empty", "HOME="},
    {"Missing", "HOME=/nowhere"},
    {"AFile", "HOME=$PWD/file; touch file"},
    {"ReadOnly", "chmod 555 ."},
    {"ConfigIsAFile", "touch .config"},
    {"TopsDangle", "ln -s /nowhere .config; ln -s /nowhere .local"},
    {"EveryFileDangles",
     "dangle .config/environment.d/99-corvana.conf .config/corvana/proxy.sh"
     " .local/share/applications/Corvana.desktop"
     " .local/share/icons/hicolor/128x128/apps/corvana.png"},
    {"EveryDirectoryDangles",
     "dangle .config/environment.d .config/corvana .local/share/applications .local/share/icons"
     " .local/share/Corvana/run"},
    {"EveryFileIsADirectory",
     "mkdir -p .config/environment.d/99-corvana.conf/full .config/corvana/proxy.sh"
     " .local/share/applications/Corvana.desktop"
     " .local/share/icons/hicolor/128x128/apps/corvana.png"},
    // The second session comes when the disk has room again.
    {"Full",
     "exec unshare --user --map-root-user --mount sh -c '"
     "mount -t tmpfs -o size=64k none $HOME && ! head -c 1M /dev/zero >$HOME/filler &&"
     " \"$0\" \"$@\" --quit >../first && grep -q 已设置系统代理 ../first && rm $HOME/filler &&"
     " exec \"$0\" \"$@\"' \"$0\" \"$@\""},
    // The shell can't open the core's log, so no core is started. Which of the two failures that is
    // depends on how long the probe sees the shell that was to become the core.
    {"LogDangles", "dangle .local/share/Corvana/run/runtime.log",
     "runtime.log: Directory nonexistent\n[Corvana] zant "},
};

INSTANTIATE_TEST_SUITE_P(Are, HostileHomes, testing::ValuesIn(k_homes));
