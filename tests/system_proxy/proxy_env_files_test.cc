#include "system_proxy/proxy_env_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/temporary_home.h"

namespace fs = std::filesystem;

TEST(ProxyEnvFiles, AreWrittenAndReset) {
  const TemporaryHome home;
  const std::string dropin = ".config/environment.d/99-corvana.conf";
  const std::string script = ".config/corvana/proxy.sh";
  write_proxy_env_file(7890, 7891, false);
  umask(0077);
  chmod(script.c_str(), 0755);
  for (const bool enable : {true, false, false}) {
    write_systemd_environment_dropin(7890, 7891, enable);
    write_proxy_env_file(7890, 7891, enable);
    EXPECT_EQ(fs::exists(dropin), enable);
    EXPECT_EQ(fs::status(script).permissions(), fs::perms(0644));
    // What a shell makes of the script is tried with the real tools.
    const std::vector<std::string> lines = lines_of(read_file(script));
    ASSERT_EQ(lines.size(), enable ? 11u : 4u);
    ASSERT_EQ(lines_of(read_file(dropin)).size(), enable ? 5u : 0u);
    EXPECT_EQ(lines[2], "#   source ~/.config/corvana/proxy.sh");
    if (!enable) continue;
    EXPECT_EQ(lines_of(read_file(dropin))[0], "# Managed by Corvana — do not edit");
    EXPECT_EQ(lines_of(read_file(dropin))[3], "all_proxy=socks5://127.0.0.1:7891");
    EXPECT_EQ(lines[3], "export http_proxy=\"http://127.0.0.1:7890\"");
    EXPECT_EQ(lines[7], "export all_proxy=\"socks5://127.0.0.1:7891\"");
  }
}
