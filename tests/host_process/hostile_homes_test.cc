#include <sys/stat.h>

#include <filesystem>

#include "host_process/host_process.h"

namespace fs = std::filesystem;

namespace {

struct HostileHome {
  const char* name;
  void (*prepare)(const std::string& home);
  const char* outcome = "[Corvana] 已设置系统代理 (DE=gnome, ";
  std::vector<std::string> launcher = {};
};

void PrintTo(const HostileHome& home, std::ostream* out) { *out << home.name; }

class HostileHomes : public HostTest, public testing::WithParamInterface<HostileHome> {
 protected:
  HostileHomes() {
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    home_.add_recorders({"gsettings"});
  }

  // Connects and leaves by a signal. Whatever the home is like, the console tells of all three steps.
  void expect_a_whole_session(const std::vector<std::string>& command, const std::string& outcome) {
    ChildProcess host(command);
    EXPECT_TRUE(host.wait_for("[Corvana] 已清除系统代理 (DE=gnome)")) << host.console();
    EXPECT_TRUE(host.wait_for(outcome)) << host.console();
    host.send(SIGTERM);
    EXPECT_EQ(0, host.wait_for_exit().value_or(-1)) << host.console();
    EXPECT_EQ("", host.still_running());
    EXPECT_FALSE(does_core_run());
    const std::string console = host.console();
    EXPECT_LT(console.find("收到退出信号"), console.size()) << console;
    const std::vector<std::string> commands = home_.recorded_commands();
    ASSERT_FALSE(commands.empty());
    EXPECT_EQ("gsettings set org.gnome.system.proxy.socks port 0", commands.back());
  }
};

}  // namespace

static void leave_dangling(const std::string& path) {
  fs::create_directories(fs::path(path).parent_path());
  fs::create_symlink("/nowhere/at/all", path);
}

TEST_P(HostileHomes, EndNothingAndHangNothing) {
  const std::string home = home_.path() + "/user";
  fs::create_directory(home);
  setenv("HOME", home.c_str(), 1);
  GetParam().prepare(home);
  std::vector<std::string> command = GetParam().launcher;
  for (const std::string& word : connecting()) command.push_back(word);
  expect_a_whole_session(command, GetParam().outcome);
  chmod(home.c_str(), 0700);
}

static const HostileHome k_homes[] = {
    {"Unset", [](const std::string&) { unsetenv("HOME"); }},
    {"Empty", [](const std::string&) { setenv("HOME", "", 1); }},
    {"Missing", [](const std::string& home) { fs::remove(home); }},
    {"AFile",
     [](const std::string& home) {
       fs::remove(home);
       write_file(home, "");
     }},
    {"ReadOnly", [](const std::string& home) { chmod(home.c_str(), 0555); }},
    {"ConfigIsAFile", [](const std::string& home) { write_file(home + "/.config", ""); }},
    {"ConfigDangles", [](const std::string& home) { leave_dangling(home + "/.config"); }},
    {"LocalDangles", [](const std::string& home) { leave_dangling(home + "/.local"); }},
    {"EveryFileDangles",
     [](const std::string& home) {
       leave_dangling(home + "/.config/environment.d/99-corvana.conf");
       leave_dangling(home + "/.config/corvana/proxy.sh");
       leave_dangling(home + "/.local/share/applications/Corvana.desktop");
       leave_dangling(home + "/.local/share/icons/hicolor/128x128/apps/corvana.png");
     }},
    {"EveryDirectoryDangles",
     [](const std::string& home) {
       leave_dangling(home + "/.config/environment.d");
       leave_dangling(home + "/.config/corvana");
       leave_dangling(home + "/.local/share/applications");
       leave_dangling(home + "/.local/share/icons");
       leave_dangling(home + "/.local/share/Corvana/run");
     }},
    {"EveryFileIsADirectory",
     [](const std::string& home) {
       fs::create_directories(home + "/.config/environment.d/99-corvana.conf/full");
       fs::create_directories(home + "/.config/corvana/proxy.sh");
       fs::create_directories(home + "/.local/share/applications/Corvana.desktop");
       fs::create_directories(home + "/.local/share/icons/hicolor/128x128/apps/corvana.png");
     }},
    {"Full",
     [](const std::string&) {},
     "[Corvana] 已设置系统代理 (DE=gnome, ",
     {"unshare", "--user", "--map-root-user", "--mount", "sh", "-c",
      "mount -t tmpfs -o size=64k full \"$HOME\" && "
      "! head -c 1M /dev/zero >\"$HOME/filler\" && exec \"$0\" \"$@\""}},
    // The shell can't open the core's log, so no core is started. Which of the two failures that is
    // depends on how long the probe sees the shell that was to become the core.
    {"LogDangles",
     [](const std::string& home) {
       leave_dangling(home + "/.local/share/Corvana/run/runtime.log");
     },
     "runtime.log: Directory nonexistent\n[Corvana] zant "},
};

INSTANTIATE_TEST_SUITE_P(Homes, HostileHomes, testing::ValuesIn(k_homes),
                         [](const auto& home) { return std::string(home.param.name); });
