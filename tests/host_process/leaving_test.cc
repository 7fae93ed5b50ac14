#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <thread>

#include "host_process/host_process.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

// How to tell a host to leave. Ctrl-C and a closed terminal reach its whole process group. A signal
// that comes after all is taken back may end the process.
struct WayOut {
  const char* name;
  int signal;
  void (*take)(pid_t host);
};

constexpr WayOut k_ways_out[] = {{"Terminate", SIGTERM, [](pid_t host) { kill(host, SIGTERM); }},
                                 {"CtrlC", SIGINT, [](pid_t host) { kill(-host, SIGINT); }},
                                 {"HangUp", SIGHUP, [](pid_t host) { kill(-host, SIGHUP); }},
                                 {"CloseWindow", 0, [](pid_t) { close_window(); }}};

// A desktop whose settings are the files in "settings", and whose tool takes its time before it
// writes. "answered" was touched as the tool last ended.
class LeavingTest : public HostTest {
 protected:
  LeavingTest() {
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    fs::create_directory("settings");
    set_pace("0");
    home_.add_stand_in("gsettings", R"(#!/bin/sh
read -r delay hangs_at <pace
sleep "$delay"
case ${hangs_at:-never} in "$4" | all) : >hanging; sleep 1000 ;; esac
echo "a warning" >&2
echo "$4" >"settings/${2#org.gnome.system.}.$3"
: >answered
)");
  }

  // How many seconds the tool takes for each call, and the value at which it hangs, or "all".
  static void set_pace(const std::string& pace) {
    write_file("new-pace", pace + "\n");
    fs::rename("new-pace", "pace");
  }

  // A core at work with the proxy set, as an earlier host that was killed leaves it.
  std::vector<std::string> command_of_earlier_core() const {
    write_file("settings/proxy.mode", "manual\n");
    return {CORVANA_BUNDLE "/bin/zant", "run", "-c", config_};
  }

  // From then on a signal makes the host leave; before, it would just end. SIGHUP comes last.
  static bool wait_until_signals_are_hooked(const ChildProcess& host) {
    return eventually([&] {
      const std::string status = read_file("/proc/" + std::to_string(host.pid()) + "/status");
      const size_t caught = status.find("SigCgt:");
      return caught != status.npos &&
             (std::stoull(status.substr(caught + 7), nullptr, 16) & 1) != 0;
    });
  }

  // Waits for the end; "" when it was a clean one with nothing left behind. `end_signal` may have
  // ended the process after it had taken everything back.
  std::string faults_at_the_end(ChildProcess& host, milliseconds limit = 30s, int end_status = 0,
                                int end_signal = 0) {
    const auto told = fs::file_time_type::clock::now();
    const std::optional<int> status = host.wait_for_exit(limit);
    const auto gone = fs::file_time_type::clock::now();
    if (!status) return "still runs\n" + host.console();
    const auto answered = std::max(told, fs::last_write_time("answered"));
    slowest_exit_ =
        std::max(slowest_exit_, std::chrono::duration_cast<milliseconds>(gone - answered));
    const std::string state = host.still_running() + (does_core_run() ? "a core\n" : "") +
                              output_of(
                                  "cd settings; rm -f *.ignore-hosts; cat * | paste -sd ,;"
                                  " cd ../.config; ls environment.d;"
                                  " grep -E 'export|unset' corvana/proxy.sh");
    const std::string nothing_left =
        "false,,0,,0,none,,0\nunset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy"
        " ALL_PROXY no_proxy NO_PROXY\n";
    const bool has_ended_well = *status == end_status || *status == end_signal;
    if (has_ended_well && state == nothing_left) return "";
    return "wait status " + std::to_string(*status) + "\n" + state + host.console();
  }

  milliseconds slowest_exit_{};  // from the tools' last answer to the end of the process
};

struct Phase {
  const char* name;
  bool restarts, stops;
  // How long a task with its surroundings takes: the moments are spread over that.
  milliseconds fast, slow;
};

constexpr Phase k_phases[] = {{"start", false, false, 700ms, 3600ms},
                              {"restart", true, false, 1800ms, 4800ms},
                              {"stop", false, true, 2300ms, 4800ms}};

class Leaving : public LeavingTest, public testing::WithParamInterface<int> {
 protected:
  std::string leave(const Phase& during, bool slow, milliseconds moment) {
    set_pace("0");
    std::optional<ChildProcess> earlier_core;
    if (during.restarts) earlier_core.emplace(command_of_earlier_core());
    ChildProcess host(during.stops ? connecting({"--quit"}) : connecting());
    if (!wait_until_signals_are_hooked(host)) return "never ready\n" + host.console();
    if (during.stops && !host.wait_for("已设置系统代理")) return "not connected\n" + host.console();
    if (slow) set_pace("0.3");
    // A stop begins when the window has been looked at for a while.
    std::this_thread::sleep_for(moment + (during.stops ? 600ms : 0ms));
    if (!host.wait_for_exit(0ms)) k_ways_out[GetParam()].take(host.pid());
    return faults_at_the_end(host, 40s, 0, k_ways_out[GetParam()].signal);
  }
};

}  // namespace

TEST_P(Leaving, LeavesNothingBehindAtAnyMoment) {
  const bool is_long = std::getenv("CORVANA_LONG_TESTS") != nullptr;
  const int moments_of_a_phase = is_long ? 20 : 1;
  std::mt19937 random(2025u + static_cast<unsigned>(GetParam()));
  int moments = 0, failures = 0;
  for (int i = 0; i < 2 * moments_of_a_phase; ++i) {
    const bool slow = i % 2 != 0;
    const int part = i / 2;
    for (const Phase& during : k_phases) {
      const double place = part + std::uniform_real_distribution<>()(random);
      // The short form takes slow tools at two phases and fast ones at the third, by turns.
      const bool takes_fast = &during == k_phases + 1 + GetParam() % 2;
      if (!is_long && slow == takes_fast) continue;
      const auto moment = std::chrono::duration_cast<milliseconds>(
          place / moments_of_a_phase * (slow ? during.slow : during.fast));
      const std::string faults = leave(during, slow, moment);
      EXPECT_EQ("", faults) << during.name << (slow ? ", slow, " : ", fast, ") << moment.count();
      EXPECT_LT(slowest_exit_, 3s);
      ++moments;
      failures += !faults.empty();
    }
  }
  std::printf("%d moments, %d failures, slowest exit %d ms after the tools' last answer\n", moments,
              failures, static_cast<int>(slowest_exit_.count()));
}

INSTANTIATE_TEST_SUITE_P(By, Leaving, testing::Range(0, 4),
                         [](const auto& way) { return std::string(k_ways_out[way.param].name); });

// The tool never answers, to one of its calls or to all of them.
class HungTool : public LeavingTest, public testing::WithParamInterface<const char*> {};

TEST_P(HungTool, DoesNotKeepTheProcess) {
  ChildProcess host(connecting());
  ASSERT_TRUE(wait_until_signals_are_hooked(host));
  set_pace(std::string("0 ") + GetParam());
  ASSERT_TRUE(eventually([] { return fs::exists("hanging"); })) << host.console();
  if (GetParam() == std::string("all")) {
    close_window();
    EXPECT_TRUE(eventually([] { return visible_windows() == 0; }, 3s)) << "a frozen window";
  } else {
    kill(host.pid(), SIGTERM);
  }
  EXPECT_EQ(0, host.wait_for_exit(20s).value_or(-1)) << host.console();
  EXPECT_EQ("", host.still_running());
  EXPECT_FALSE(does_core_run());
  EXPECT_EQ("none\n", read_file("settings/proxy.mode"));
}

INSTANTIATE_TEST_SUITE_P(At, HungTool, testing::Values("manual", "all"));

// An impatient user at the terminal: none of the signals may be lost, or end the host's commands, or
// the host before all is taken back.
TEST_F(LeavingTest, RepeatedCtrlCLeavesAsCleanlyAsOne) {
  std::mt19937 random(7);
  for (const char* delay : {"0.3", "0", "0", "0"}) {
    set_pace("0");
    ChildProcess host(connecting());
    ASSERT_TRUE(wait_until_signals_are_hooked(host));
    set_pace(delay);
    ASSERT_TRUE(host.wait_for("启动成功"));
    if (*(delay + 1) != '\0') std::this_thread::sleep_for(450ms);
    while (!host.wait_for_exit(0ms)) {
      kill(-host.pid(), SIGINT);
      // Uneven, so as not to keep step with the host.
      std::this_thread::sleep_for(500us + random() % 1000 * 1us);
    }
    EXPECT_EQ("", faults_at_the_end(host, 30s, 0, SIGINT));
    EXPECT_TRUE(host.wait_for("收到退出信号"));
  }
}

TEST_F(LeavingTest, ATeardownThatHangsIsEndedByTheNextSignal) {
  setenv("GTK_MODULES", HANGING_MODULE, 1);
  ChildProcess host({CORVANA_EXECUTABLE, "--quit"});
  ASSERT_TRUE(host.wait_for("teardown hangs"));
  kill(host.pid(), SIGTERM);
  EXPECT_EQ(SIGTERM, host.wait_for_exit(10s).value_or(-1));
}

TEST_F(LeavingTest, ALostDisplayIsAWayOut) {
  ChildProcess display({"Xvfb", ":9"});
  ASSERT_TRUE(eventually([] { return fs::exists("/tmp/.X11-unix/X9"); }));
  setenv("DISPLAY", ":9", 1);
  ChildProcess host(connecting());
  ASSERT_TRUE(host.wait_for("已设置系统代理")) << host.console();
  kill(display.pid(), SIGKILL);
  EXPECT_EQ("", faults_at_the_end(host, 30s, W_EXITCODE(1, 0)));
}

TEST_F(LeavingTest, ACommandThatHoldsUpTheMainLoopIsCutShort) {
  home_.add_stand_in("systemctl", "#!/bin/sh\n: >asked\nsleep 1000\n");
  ChildProcess host(connecting({"--page", "diagnostics"}));
  ASSERT_TRUE(eventually([] { return fs::exists("asked"); })) << host.console();
  kill(host.pid(), SIGTERM);
  EXPECT_EQ("", faults_at_the_end(host));
}

// A write to a pipe that nobody reads ends a program, and the tools write warnings. Without standard
// streams, other descriptors could get the lines.
TEST_F(LeavingTest, AConsoleThatHasGoneIsNoHindrance) {
  for (const char* console : {"> >(head -c 1 >/dev/null) 2>&1", "<&- >&- 2>&-"}) {
    write_file("settings/proxy.socks.port", "");
    ChildProcess host(connecting({}, {"bash", "-c", std::string("exec \"$0\" \"$@\" ") + console}));
    ASSERT_TRUE(eventually([] { return read_file("settings/proxy.socks.port") == "7890\n"; }));
    kill(host.pid(), SIGTERM);
    EXPECT_EQ("", faults_at_the_end(host));
  }
}

// After a core that was ended for a new one, the desktop goes on pointing at its port. A program that
// only has the core's name in its command line is neither ended nor did it set the proxy.
TEST_F(LeavingTest, AfterAFailedRestartTheProxyOfAnEndedCoreIsTakenBack) {
  write_file("broken.json", "{no core accepts \"external_controller\": \"127.0.0.1:9090\"");
  for (const bool is_core : {false, true}) {
    write_file("settings/proxy.mode", "manual\n");
    write_file("answered", "");
    std::optional<ChildProcess> earlier(
        is_core ? command_of_earlier_core()
                : std::vector<std::string>{"tail", "-f", config_, "zant.log"});
    ASSERT_TRUE(eventually(does_core_run));
    ChildProcess host(connecting({"--config", "broken.json"}));
    ASSERT_TRUE(host.wait_for("未")) << host.console();
    earlier.reset();
    EXPECT_EQ("manual\n", read_file("settings/proxy.mode"));
    kill(host.pid(), SIGTERM);
    ASSERT_EQ(0, host.wait_for_exit().value_or(-1)) << host.console();
    EXPECT_EQ(is_core ? "none\n" : "manual\n", read_file("settings/proxy.mode"));
    EXPECT_EQ("", host.still_running());
  }
}

// The host is killed while connected; what the next launch does depends on the core.
TEST_F(LeavingTest, AfterAKillTheNextLaunchTakesTheProxyBackOnlyFromADeadCore) {
  for (const bool core_lives : {false, true}) {
    std::optional<ChildProcess> killed(connecting());
    ASSERT_TRUE(killed->wait_for("已设置系统代理")) << killed->console();
    kill(killed->pid(), SIGKILL);
    ASSERT_TRUE(killed->wait_for_exit());
    if (!core_lives) killed.reset();  // with all that it started
    ASSERT_EQ(core_lives, does_core_run());
    ASSERT_EQ("manual\n", read_file("settings/proxy.mode"));

    const auto last_answer = fs::last_write_time("answered");
    // With --quit the window disconnects first, but only when it finds a running core.
    ChildProcess next({CORVANA_EXECUTABLE, "--quit"});
    ASSERT_TRUE(wait_until_signals_are_hooked(next));
    EXPECT_EQ(core_lives, fs::last_write_time("answered") == last_answer);
    EXPECT_EQ(core_lives ? "manual\n" : "none\n", read_file("settings/proxy.mode"));
    EXPECT_EQ("", faults_at_the_end(next));
    EXPECT_EQ(core_lives, next.console().find("已停止代理服务") != std::string::npos);
  }
}
