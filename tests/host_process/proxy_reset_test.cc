#include <filesystem>

#include "host_process/host_process.h"

#define PROGRAM CORVANA_BUNDLE "/corvana-proxy-reset"
#define DROPIN ".config/environment.d/99-corvana.conf"

namespace {

struct Login {
  const char* name;
  const char* preparation;  // a shell script, run in the home where the client's proxy is still set
  const char* console;      // its end
};

void PrintTo(const Login& login, std::ostream* out) { *out << login.name; }

class ProxyReset : public HostTest, public testing::WithParamInterface<Login> {};

}  // namespace

TEST_P(ProxyReset, ClearsOnlyAProxyOfTheClientsWithoutACore) {
  const std::string expected = GetParam().console;
  setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
  home_.add_recorders({"gsettings"});
  std::filesystem::create_directories(".config/environment.d");
  write_file(DROPIN, "");
  ChildProcess login(
      {"bash", "-c", std::string(GetParam().preparation) + "; exec \"$0\"", PROGRAM});
  EXPECT_EQ(0, login.wait_for_exit().value_or(-1)) << login.console();
  const std::string console = login.console();
  // Tools may complain before it.
  const size_t report = std::min(console.find("[Corvana]"), console.size());
  EXPECT_EQ(expected, console.substr(expected.empty() ? 0 : report));
  EXPECT_TRUE(!expected.empty() || home_.recorded_commands().empty());
}

static const char k_cleared[] = "[Corvana] 已清除系统代理 (DE=gnome)\n",
                  k_cleared_twice[] =
                      "[Corvana] 已清除系统代理 (DE=gnome)\n[Corvana] 已清除系统代理 (DE=gnome)\n";

static const Login k_logins[] = {
    {"AfterAPowerCut", ":", k_cleared},
    {"WithAProxyOfTheUsersOwn", "rm " DROPIN, ""},
    {"WithACore", "(exec -a 'zant run -c' sleep 60) & until pgrep -x sleep; do :; done >/dev/null",
     ""},
    {"WithoutHome", "unset HOME", ""},
    {"InAReadOnlyHome", "chmod -R a-w .config", k_cleared},
    {"WithADirectory", "rm " DROPIN "; mkdir " DROPIN, k_cleared},
    {"WithADanglingLink", "ln -sf /nowhere " DROPIN, ""},
    {"WithoutASessionBus", "rm bin/gsettings", k_cleared},
    {"WithAHungTool", "printf '#!/bin/sh\\nsleep 1000' >bin/gsettings", k_cleared},
    // Each of the two waits in its first command for the other one's.
    {"TwiceAtOnce",
     "printf '#!/bin/sh\n: >at-$PPID; until [ $(ls at-* | wc -l) -gt 1 ]; do sleep 0.01; done'"
     " >bin/gsettings; \"$0\" & \"$0\"; wait",
     k_cleared_twice},
};

INSTANTIATE_TEST_SUITE_P(At, ProxyReset, testing::ValuesIn(k_logins));

TEST_F(HostTest, TheLoginProgramAnswersItsArguments) {
  const std::tuple<const char*, const char*> rows[] = {
      {"--version", "corvana-proxy-reset 1.0.0\n0\n"},
      {"--help | head -1; false", "Usage:\n1\n"},
      {"--no-such", "Unknown option --no-such\n2\n"},
      {"again", "Unexpected argument again\n2\n"},
  };
  for (const auto& [arguments, answer] : rows) {
    EXPECT_EQ(answer, output_of("'" PROGRAM "' " + std::string(arguments) + " 2>&1; echo $?"));
  }
}
