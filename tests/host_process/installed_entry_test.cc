#include <filesystem>

#include "host_process/host_process.h"

namespace fs = std::filesystem;

// Application directories as people make them, down to what a shell or a desktop entry reserves.
class InstalledEntry : public HostTest, public testing::WithParamInterface<const char*> {
 protected:
  std::string application_dir() const { return home_.path() + "/" + GetParam(); }
  std::string entry() const { return home_.path() + "/.local/share/applications/Corvana.desktop"; }
  std::string icon() const {
    return home_.path() + "/.local/share/icons/hicolor/128x128/apps/corvana.png";
  }
};

static bool does_run(const std::string& program) {
  for (const auto& process : fs::directory_iterator("/proc")) {
    std::error_code ignored;
    if (fs::read_symlink(process.path() / "exe", ignored) == program) return true;
  }
  return false;
}

TEST_P(InstalledEntry, IsValidAndStartsTheProgramWhereGioCan) {
  fs::create_directories(fs::path(application_dir()).parent_path());
  fs::copy(CORVANA_BUNDLE, application_dir(), fs::copy_options::recursive);
  fs::remove_all(entry());  // what keeps other tests from waiting for it
  fs::create_directories(fs::path(icon()).parent_path());
  write_file(icon(), "an older icon");
  const std::string program = application_dir() + "/Corvana";

  ChildProcess first({program, "--quit"});
  EXPECT_EQ(0, first.wait_for_exit().value_or(-1)) << first.console();
  EXPECT_LT(first.console().find("已复制图标到标准位置: " + icon() +
                                 "\n已创建桌面入口文件: " + entry() + "\n"),
            first.console().size())
      << first.console();
  EXPECT_EQ("", first.still_running());
  EXPECT_EQ(read_file(application_dir() + "/logo.png"), read_file(icon()));
  EXPECT_EQ("", output_of("desktop-file-validate --no-hints " + entry() + " 2>&1"));

  // GIO looks for the program before it undoes the doubling of percent signs, and so never starts
  // one whose path has any.
  if (program.find('%') != program.npos) return;
  ChildProcess launcher({"gio", "launch", entry()});
  EXPECT_TRUE(eventually([&] { return does_run(program); }))
      << read_file(entry()) << launcher.console();
}

INSTANTIATE_TEST_SUITE_P(In, InstalledEntry,
                         testing::Values("plain", "a blank/and \"quotes\"", "$HOME/it's",
                                         "100%/a%b", "back\\slash `tick`", "家/目录 (1)"),
                         [](const auto& row) { return "Directory" + std::to_string(row.index); });
