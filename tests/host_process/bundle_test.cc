#include <filesystem>

#include "host_process/host_process.h"

namespace fs = std::filesystem;

TEST(Bundle, NeedsItsLibrariesAndLooksForThemOnlyBesideTheExecutable) {
  const std::string libraries = output_of(
      "for name in dbus-1.so.3 proxy.so.1 flutter_linux_gtk.so; do echo lib$name; done;"
      " printf 'lib%s.so\\n' " PLUGINS);
  EXPECT_EQ(
      output_of("{ echo '$ORIGIN/lib'; echo '" + libraries + "'; } | sed '/^$/d' | LC_ALL=C sort"),
      output_of("readelf -Wd '" CORVANA_EXECUTABLE "' | sed -n 's/.*\\[\\(.*\\)\\]$/\\1/p' |"
                " LC_ALL=C sort | grep -E '_plugin|flutter|dbus|libproxy|/'"));
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

namespace {

// An application directory as people make it, down to what a shell or a desktop entry reserves.
struct Installation {
  const char* dir;
  const char* preparation;     // a shell script in that directory, with the installed icon as $icon
  const char* icon = nullptr;  // what it holds after a copy that fails
};

void PrintTo(const Installation& installation, std::ostream* out) { *out << installation.dir; }

class InstalledEntry : public HostTest, public testing::WithParamInterface<Installation> {};

}  // namespace

TEST_P(InstalledEntry, IsValidAndStartsTheProgramWhereGioCan) {
  const std::string application_dir = home_.path() + "/" + GetParam().dir;
  const std::string data = home_.path() + "/.local/share/";
  const std::string entry = data + "applications/Corvana.desktop";
  const std::string icons = data + "icons/hicolor/128x128/apps", icon = icons + "/corvana.png";
  fs::create_directories(fs::path(application_dir).parent_path());
  fs::copy(CORVANA_BUNDLE, application_dir, fs::copy_options::recursive);
  fs::remove_all(entry);  // what keeps other tests from waiting for it
  fs::create_directories(icons);
  write_file(icon, "an older icon");
  fs::current_path(application_dir);
  output_of("icon='" + icon + "'; " + GetParam().preparation);
  fs::current_path(home_.path());

  ChildProcess first({application_dir + "/Corvana", "--quit"});
  EXPECT_EQ(0, first.wait_for_exit().value_or(-1)) << first.console();
  const std::string copied = "已复制图标到标准位置: " + icon + "\n";
  const std::string told = "已创建桌面入口文件: " + entry + "\n";
  const bool is_copied = GetParam().icon == nullptr;
  EXPECT_NE(first.console().find(is_copied ? copied + told : told), std::string::npos);
  EXPECT_EQ(is_copied, first.console().find("复制图标到标准位置失败: ") == std::string::npos);
  EXPECT_EQ("", first.still_running());
  EXPECT_EQ(is_copied ? read_file(application_dir + "/logo.png") : GetParam().icon,
            output_of("cat " + icon));
  EXPECT_EQ("corvana.png\n", output_of("ls -A " + icons)) << "nothing unfinished stays";
  EXPECT_EQ("", output_of("desktop-file-validate --no-hints " + entry + " 2>&1"));

  // GIO looks for the program before it undoes the doubling of percent signs, and so never starts
  // one whose path has any.
  if (application_dir.find('%') != std::string::npos) return;
  ChildProcess launcher({"gio", "launch", entry});
  EXPECT_TRUE(launcher.wait_for("[Corvana] ")) << read_file(entry) << launcher.console();
}

static const Installation k_installations[] = {
    {"plain", "chmod 444 $icon"},
    {"a blank/and \"quotes\"", "ln -sf $icon logo.png"},
    {"$HOME/it's", "chmod 000 logo.png", "an older icon"},
    {"100%/a%b", "rm logo.png; mkdir logo.png", "an older icon"},
    {"back\\slash\t`tick`", "rm $icon; mkdir $icon", ""},
    {"家/目录 (1)", ""},
};

INSTANTIATE_TEST_SUITE_P(In, InstalledEntry, testing::ValuesIn(k_installations));
