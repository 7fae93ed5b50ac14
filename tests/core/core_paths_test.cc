#include "core/core_paths.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/temporary_home.h"

namespace fs = std::filesystem;

TEST(CoreBinary, TakesTheShellsAnswerThenTheFixedPlaces) {
  const TemporaryHome home;
  home.allow_only({});
  fs::create_directories("/usr/local/bin");
  write_file("/usr/local/bin/zant", "");
  EXPECT_EQ(find_zant_binary(), "") << "not executable";
  chmod("/usr/local/bin/zant", 0755);
  EXPECT_EQ(find_zant_binary(), "/usr/local/bin/zant");

  fs::create_directories("/opt/corvana/bin");
  fs::create_symlink("zant", "/opt/corvana/bin/zant");
  EXPECT_EQ(find_zant_binary(), "/usr/local/bin/zant") << "a loop of links is nothing";
  fs::remove("/opt/corvana/bin/zant");
  fs::create_symlink("/usr/local/bin/zant", "/opt/corvana/bin/zant");
  EXPECT_EQ(find_zant_binary(), "/opt/corvana/bin/zant") << "a link is kept as it is";

  home.add_stand_in("zant", "");
  setenv("PATH", "bin", 1);
  EXPECT_EQ(find_zant_binary(), "bin/zant") << "as relative as the entry of PATH";
  fs::remove_all("/opt/corvana");
  fs::remove("/usr/local/bin/zant");
}

TEST(RuntimeDir, FollowsTheEnvironment) {
  const TemporaryHome home;
  const std::string fallback = "/tmp/corvana-" + std::to_string(getuid());
  write_file("file", "");
  fs::create_directories("readonly/Corvana/run");
  chmod("readonly/Corvana/run", 0555);
  const std::tuple<const char*, const char*, std::string> rows[] = {
      {nullptr, "home", "home/.local/share/Corvana/run"},
      {"", "home", "home/.local/share/Corvana/run"},
      {"data/", "home", "data//Corvana/run"},
      {nullptr, nullptr, fallback + "/run"},
      {"file", "home", fallback},
      {"readonly", "home", fallback},
  };
  for (const auto& [data_home, home_variable, dir] : rows) {
    data_home ? setenv("XDG_DATA_HOME", data_home, 1) : unsetenv("XDG_DATA_HOME");
    home_variable ? setenv("HOME", home_variable, 1) : unsetenv("HOME");
    EXPECT_EQ(runtime_log_path(), dir + "/runtime.log");
    EXPECT_TRUE(fs::is_directory(dir)) << dir;
  }
}
