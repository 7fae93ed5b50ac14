#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>
#include <sstream>
#include <thread>

#include "host_process/host_process.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

// A desktop whose settings are the files in "settings", and whose tool takes its time before it
// writes. "answered" was touched as the tool last ended.
class LeavingTest : public HostTest {
 protected:
  LeavingTest() {
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    fs::create_directory(home_.path() + "/settings");
    set_pace(0ms);
    home_.add_stand_in("gsettings", R"(#!/bin/sh
cd "${0%/*}/.."
read -r delay hangs_at <pace
[ "$delay" = 0.000 ] || sleep "$delay"
case $hangs_at in "$4" | all) sleep 1000 ;; esac
echo "$4" >"settings/$2.$3"
: >answered
)");
  }

  // How long the tool takes for each call, and the value at which it hangs, or "all" or "never".
  void set_pace(milliseconds delay, const char* hangs_at = "never") {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f %s\n", static_cast<double>(delay.count()) / 1000,
                  hangs_at);
    write_file(home_.path() + "/new-pace", text);
    fs::rename(home_.path() + "/new-pace", home_.path() + "/pace");
  }

  std::string setting(const std::string& key) const {
    return read_file(home_.path() + "/settings/org.gnome.system.proxy" + key);
  }

  // Once all has ended; "" when nothing is left of a connection.
  std::string leftovers() const {
    std::ostringstream left;
    if (does_core_run()) left << "a core runs; ";
    const std::vector<std::pair<std::string, std::string>> cleared = {
        {".mode", "none\n"},    {".http.host", "\n"},        {".http.port", "0\n"},
        {".https.host", "\n"},  {".https.port", "0\n"},      {".socks.host", "\n"},
        {".socks.port", "0\n"}, {".http.enabled", "false\n"}};
    for (const auto& [key, value] : cleared) {
      if (setting(key) != value) left << key << " is " << setting(key);
    }
    const std::string config = home_.path() + "/.config/";
    if (fs::exists(config + "environment.d/99-corvana.conf")) left << "the drop-in is there; ";
    const std::string script = read_file(config + "corvana/proxy.sh");
    if (script.find("export") != script.npos || script.find("\nunset http_proxy") == script.npos) {
      left << "proxy.sh has " << script;
    }
    return left.str();
  }

  // Waits for the end; "" when it was a clean one with nothing left behind.
  std::string faults_at_the_end(ChildProcess& host, milliseconds limit) {
    const auto told = fs::file_time_type::clock::now();
    const std::optional<int> status = host.wait_for_exit(limit);
    const auto gone = fs::file_time_type::clock::now();
    if (!status) return "still runs\n" + host.console();
    const auto answered = std::max(told, fs::last_write_time(home_.path() + "/answered"));
    last_exit_ = std::chrono::duration_cast<milliseconds>(gone - answered);
    std::string faults;
    if (*status != 0) faults += "wait status " + std::to_string(*status) + "; ";
    faults += host.still_running() + leftovers();
    return faults.empty() ? "" : faults + "\n" + host.console();
  }

  milliseconds last_exit_{};  // from the tools' last answer to the end of the process
};

enum class Phase { start, restart, stop };

struct PhaseTraits {
  Phase phase;
  const char* name;
  // How long a task with its surroundings takes: the moments are spread over that.
  milliseconds fast, slow;
};

constexpr PhaseTraits k_phases[] = {{Phase::start, "start", 700ms, 3600ms},
                                    {Phase::restart, "restart", 1800ms, 4800ms},
                                    {Phase::stop, "stop", 2300ms, 4800ms}};

class Leaving : public LeavingTest, public testing::WithParamInterface<WayOut> {
 protected:
  std::string leave(const PhaseTraits& during, bool slow, milliseconds moment);
};

}  // namespace

// A core at work with the proxy set, as an earlier host that was killed leaves it.
static std::vector<std::string> core_command(const std::string& config) {
  return {CORVANA_BUNDLE "/bin/zant", "run", "-c", config};
}

std::string Leaving::leave(const PhaseTraits& during, bool slow, milliseconds moment) {
  set_pace(0ms);
  std::optional<ChildProcess> earlier_core;
  if (during.phase == Phase::restart) {
    earlier_core.emplace(core_command(config_));
    write_file(home_.path() + "/settings/org.gnome.system.proxy.mode", "manual\n");
  }
  const bool stops = during.phase == Phase::stop;
  ChildProcess host(
      connecting(stops ? std::vector<std::string>{"--quit"} : std::vector<std::string>{}));
  if (!wait_until_signals_are_hooked(host)) return "never ready\n" + host.console();
  if (stops && !host.wait_for("已设置系统代理")) return "not connected\n" + host.console();
  if (slow) set_pace(300ms);
  // A stop begins when the window has been looked at for a while.
  std::this_thread::sleep_for(moment + (stops ? 600ms : 0ms));
  if (!host.wait_for_exit(0ms)) GetParam().take(host);
  return faults_at_the_end(host, 40s);
}

// The short form takes slow tools at two phases and fast ones at the third, by turns.
static bool is_left_out(const PhaseTraits& during, bool slow, int way) {
  const bool takes_fast = static_cast<int>(during.phase) == 1 + way % 2;
  return std::getenv("CORVANA_LONG_TESTS") == nullptr && slow == takes_fast;
}

TEST_P(Leaving, LeavesNothingBehindAtAnyMoment) {
  const int moments_of_a_phase = std::getenv("CORVANA_LONG_TESTS") == nullptr ? 1 : 20;
  const int way =
      static_cast<int>(std::find_if(std::begin(k_ways_out), std::end(k_ways_out),
                                    [](const WayOut& row) { return row.name == GetParam().name; }) -
                       k_ways_out);
  std::mt19937 random(2025u + static_cast<unsigned>(way));
  int moments = 0, failures = 0;
  milliseconds slowest{};
  for (int i = 0; i < 2 * moments_of_a_phase; ++i) {
    const bool slow = i % 2 != 0;
    for (const PhaseTraits& during : k_phases) {
      const double place = i / 2 + std::uniform_real_distribution<>()(random);
      if (is_left_out(during, slow, way)) continue;
      const milliseconds span = slow ? during.slow : during.fast;
      const milliseconds moment(
          static_cast<int>(place / moments_of_a_phase * static_cast<double>(span.count())));
      const std::string faults = leave(during, slow, moment);
      EXPECT_EQ("", faults) << during.name << (slow ? ", slow, " : ", fast, ") << moment.count()
                            << " ms";
      EXPECT_LT(last_exit_, 3s);
      ++moments;
      if (!faults.empty()) ++failures;
      slowest = std::max(slowest, last_exit_);
    }
  }
  std::printf("%s: %d moments, %d failures, slowest exit %d ms after the tools' last answer\n",
              GetParam().name, moments, failures, static_cast<int>(slowest.count()));
}

INSTANTIATE_TEST_SUITE_P(By, Leaving, testing::ValuesIn(k_ways_out),
                         [](const auto& way) { return std::string(way.param.name); });

// The tool never answers, to one of its calls or to all of them.
TEST_F(LeavingTest, AHungToolDoesNotKeepTheProcess) {
  for (const char* hangs_at : {"manual", "all"}) {
    SCOPED_TRACE(hangs_at);
    set_pace(0ms);
    ChildProcess host(connecting());
    ASSERT_TRUE(wait_until_signals_are_hooked(host));
    set_pace(0ms, hangs_at);
    ASSERT_TRUE(host.wait_for("启动成功"));
    std::this_thread::sleep_for(300ms);
    host.send(SIGTERM);
    EXPECT_EQ(0, host.wait_for_exit(20s).value_or(-1)) << host.console();
    EXPECT_EQ("", host.still_running());
    EXPECT_FALSE(does_core_run());
    EXPECT_EQ("none\n", setting(".mode"));
  }
}

// An impatient user at the terminal: none of the signals may be lost, or end the host or its commands.
TEST_F(LeavingTest, AHailOfCtrlCIsAsGoodAsOne) {
  std::mt19937 random(7);
  for (const milliseconds delay : {300ms, 0ms, 0ms, 0ms}) {
    set_pace(0ms);
    ChildProcess host(connecting());
    ASSERT_TRUE(wait_until_signals_are_hooked(host));
    set_pace(delay);
    ASSERT_TRUE(host.wait_for("启动成功"));
    std::this_thread::sleep_for(delay * 3 / 2);
    while (!host.wait_for_exit(0ms)) {
      kill(-host.pid(), SIGINT);
      // Uneven, so as not to keep step with the host.
      std::this_thread::sleep_for(500us + random() % 1000 * 1us);
    }
    EXPECT_EQ("", faults_at_the_end(host, 0ms));
    EXPECT_NE(std::string::npos, host.console().find("收到退出信号")) << host.console();
  }
}

// The desktop goes on pointing at the core that was ended for the new one.
TEST_F(LeavingTest, AfterAFailedRestartTheProxyIsTakenBack) {
  ChildProcess earlier_core(core_command(config_));
  write_file(home_.path() + "/settings/org.gnome.system.proxy.mode", "manual\n");
  write_file(config_, "no core accepts \"external_controller\": \"127.0.0.1:" +
                          std::to_string(clash_port_) + "\"");
  ChildProcess host(connecting());
  ASSERT_TRUE(host.wait_for("未")) << host.console();
  host.send(SIGTERM);
  EXPECT_EQ("", faults_at_the_end(host, 30s));
}

// The host is killed while connected; what the next launch does depends on the core.
class AfterAKill : public LeavingTest {
 protected:
  void connect_and_kill() {
    killed_.emplace(connecting());
    ASSERT_TRUE(killed_->wait_for("已设置系统代理")) << killed_->console();
    killed_->send(SIGKILL);
    ASSERT_TRUE(killed_->wait_for_exit());
    ASSERT_TRUE(does_core_run());
    ASSERT_EQ("manual\n", setting(".mode"));
  }

  std::optional<ChildProcess> killed_;
};

TEST_F(AfterAKill, TheNextLaunchTakesTheProxyBackFromADeadCore) {
  ASSERT_NO_FATAL_FAILURE(connect_and_kill());
  killed_.reset();
  ASSERT_TRUE(eventually([] { return !does_core_run(); }));
  ChildProcess next(host_command({"--quit"}));
  EXPECT_EQ("", faults_at_the_end(next, 30s));
  EXPECT_NE(std::string::npos, next.console().find("[Corvana] 已清除系统代理 (DE=gnome)"));
}

TEST_F(AfterAKill, TheNextLaunchLeavesTheProxyOfALivingCore) {
  ASSERT_NO_FATAL_FAILURE(connect_and_kill());
  const auto last_answer = fs::last_write_time(home_.path() + "/answered");
  // The window goes over from connected to disconnecting only because it saw itself connected.
  ChildProcess next(host_command({"--quit"}));
  ASSERT_TRUE(wait_until_signals_are_hooked(next));
  std::this_thread::sleep_for(300ms);
  EXPECT_EQ(last_answer, fs::last_write_time(home_.path() + "/answered"));
  EXPECT_EQ("manual\n", setting(".mode"));
  EXPECT_EQ("", faults_at_the_end(next, 30s));
  EXPECT_NE(std::string::npos, next.console().find("已停止代理服务")) << next.console();
}
