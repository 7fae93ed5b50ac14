#include <filesystem>

#include "host_process/host_process.h"

namespace fs = std::filesystem;

TEST(Bundle, NeedsItsLibrariesAndLooksForThemOnlyBesideTheExecutable) {
  EXPECT_EQ(
      "$ORIGIN/lib libdbus-1.so.3 libflutter_linux_gtk.so libplatform_device_id_linux_plugin.so"
      " libproxy.so.1 libscreen_retriever_plugin.so libsentry_flutter_plugin.so"
      " libtray_manager_plugin.so liburl_launcher_linux_plugin.so"
      " libwindow_manager_plugin.so\n",
      output_of("readelf -Wd '" CORVANA_EXECUTABLE "' | sed -n 's/.*\\[\\(.*\\)\\]$/\\1/p' |"
                " LC_ALL=C sort | grep -E '_plugin|flutter|dbus|libproxy|/' | paste -sd ' '"));
}

// A newer C library's headers bring newer names of old functions.
#if __GLIBC_MINOR__ <= 36
TEST(Bundle, RunsWithTheCLibraryOfOlderReleases) {
  const std::string versions =
      output_of("objdump -T '" CORVANA_EXECUTABLE "' | grep -o 'GLIBC_[0-9.]*' | sort -Vu");
  EXPECT_EQ(lines_of(versions).front(), "GLIBC_2.2.5");
  EXPECT_LE(std::stoi(lines_of(versions).back().substr(8)), 35) << versions;
}
#endif

// Application directories as people make them, down to what a shell or a desktop entry reserves.
class InstalledEntry : public HostTest, public testing::WithParamInterface<const char*> {};

TEST_P(InstalledEntry, IsValidAndStartsTheProgramWhereGioCan) {
  const std::string application_dir = home_.path() + "/" + GetParam();
  const std::string data = home_.path() + "/.local/share/";
  const std::string entry = data + "applications/Corvana.desktop";
  const std::string icon = data + "icons/hicolor/128x128/apps/corvana.png";
  fs::create_directories(fs::path(application_dir).parent_path());
  fs::copy(CORVANA_BUNDLE, application_dir, fs::copy_options::recursive);
  fs::remove_all(entry);  // what keeps other tests from waiting for it
  fs::create_directories(fs::path(icon).parent_path());
  write_file(icon, "an older icon");

  ChildProcess first({application_dir + "/Corvana", "--quit"});
  EXPECT_EQ(0, first.wait_for_exit().value_or(-1)) << first.console();
  const std::string told =
      "已复制图标到标准位置: " + icon + "\n已创建桌面入口文件: " + entry + "\n";
  EXPECT_NE(first.console().find(told), std::string::npos) << first.console();
  EXPECT_EQ("", first.still_running());
  EXPECT_EQ(read_file(application_dir + "/logo.png"), read_file(icon));
  EXPECT_EQ("", output_of("desktop-file-validate --no-hints " + entry + " 2>&1"));

  // GIO looks for the program before it undoes the doubling of percent signs, and so never starts
  // one whose path has any.
  if (application_dir.find('%') != std::string::npos) return;
  ChildProcess launcher({"gio", "launch", entry});
  EXPECT_TRUE(launcher.wait_for("[Corvana] ")) << read_file(entry) << launcher.console();
}

INSTANTIATE_TEST_SUITE_P(In, InstalledEntry,
                         testing::Values("plain", "a blank/and \"quotes\"", "$HOME/it's",
                                         "100%/a%b", "back\\slash `tick`", "家/目录 (1)"));
