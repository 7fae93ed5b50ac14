#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "core/core_binary.h"
#include "core/runtime_dir.h"
#include "support/temporary_home.h"

namespace fs = std::filesystem;

static const char k_true[] = "#!/bin/sh\n";

TEST(CoreBinary, TakesTheShellsAnswerThenTheFixedPlaces) {
  const TemporaryHome home;
  home.allow_only({});
  EXPECT_EQ(find_zant_binary(), "");

  fs::create_directories("/usr/local/bin");
  write_file("/usr/local/bin/zant", k_true);
  EXPECT_EQ(find_zant_binary(), "") << "not executable";
  chmod("/usr/local/bin/zant", 0755);
  EXPECT_EQ(find_zant_binary(), "/usr/local/bin/zant");

  fs::create_directories("/opt/corvana/bin");
  fs::create_symlink("/usr/local/bin/zant", "/opt/corvana/bin/zant");
  EXPECT_EQ(find_zant_binary(), "/opt/corvana/bin/zant") << "a link is kept as it is";

  home.add_stand_in("zant", k_true);
  EXPECT_EQ(find_zant_binary(), home.bin() + "/zant");

  // A shell takes whatever is executable; relative entries of PATH give relative answers.
  setenv("PATH", "bin", 1);
  EXPECT_EQ(find_zant_binary(), "bin/zant");

  fs::remove("/opt/corvana/bin/zant");
  fs::create_directory("/opt/corvana/bin/zant");
  setenv("PATH", "/nowhere", 1);
  EXPECT_EQ(find_zant_binary(), "/opt/corvana/bin/zant") << "any type that may be entered counts";
  fs::remove_all("/opt/corvana");
  fs::create_directories("/opt/corvana/bin");
  fs::create_symlink("zant", "/opt/corvana/bin/zant");
  EXPECT_EQ(find_zant_binary(), "/usr/local/bin/zant") << "a loop of links is nothing";
  fs::remove_all("/opt/corvana");
  fs::remove("/usr/local/bin/zant");
}

TEST(RuntimeDir, FollowsTheEnvironment) {
  const TemporaryHome home;
  const std::string fallback = "/tmp/corvana-" + std::to_string(getuid());
  write_file(home.path() + "/file", "");
  fs::create_directories(home.path() + "/readonly/Corvana/run");
  chmod((home.path() + "/readonly/Corvana/run").c_str(), 0555);
  const struct {
    const char* data_home;
    const char* home;
    std::string dir;
  } rows[] = {
      {nullptr, "/tmp", "/tmp/.local/share/Corvana/run"},
      {"", "/tmp", "/tmp/.local/share/Corvana/run"},
      {"data", "/tmp", "data/Corvana/run"},
      {"data/", "/tmp", "data//Corvana/run"},
      {nullptr, "", fallback},
      {nullptr, nullptr, fallback + "/run"},
      {"file", "/tmp", fallback},
      {"readonly", "/tmp", fallback},
  };
  for (const auto& row : rows) {
    row.data_home ? setenv("XDG_DATA_HOME", row.data_home, 1) : unsetenv("XDG_DATA_HOME");
    row.home ? setenv("HOME", row.home, 1) : unsetenv("HOME");
    EXPECT_EQ(get_user_runtime_dir(), row.dir);
    EXPECT_TRUE(fs::is_directory(row.dir)) << row.dir;
    EXPECT_EQ(runtime_log_path(), row.dir + "/runtime.log");
  }
  fs::remove_all("/tmp/.local");
}
