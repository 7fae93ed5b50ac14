// Starts and stops through the channel, in this process, with a real core and with system calls
// that fail.
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "core/core_process.h"
#include "core/start_task.h"
#include "flutter_embedding/values/value.h"
#include "proxy_service/tasks.h"
#include "support/channel_client.h"
#include "support/leaving.h"
#include "support/temporary_home.h"

#define GOOD_CORE CORVANA_BUNDLE "/bin/zant"

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// Replacements of system functions: they call the real ones unless a case makes them fail or hide
// processes.
static std::atomic<bool> g_no_processes{false}, g_no_threads{false}, g_hidden_processes{false};
static std::atomic<int> g_probes_before_leaving{0};  // 0: it doesn't leave

template <typename Function>
static Function* real(Function*, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

extern "C" {
int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* argv, char* const* envp) {
  static const auto spawn = real(&posix_spawn, "posix_spawn");
  return g_no_processes ? EAGAIN : spawn(pid, path, actions, attributes, argv, envp);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                   void* argument) {
  static const auto create = real(&pthread_create, "pthread_create");
  return g_no_threads ? EAGAIN : create(thread, attributes, body, argument);
}

// Where processes are hidden, a user sees his own and no core that runs under another user.
DIR* opendir(const char* path) {
  static const auto open = real(&opendir, "opendir");
  if (std::string(path) != "/proc") return open(path);
  if (g_probes_before_leaving > 0 && --g_probes_before_leaving == 0) begin_leaving();
  return open(g_hidden_processes ? "/proc/self/task" : path);
}
}

static void limit_descriptors(rlim_t max) {
  const rlimit limit = {max, 1024};
  setrlimit(RLIMIT_NOFILE, &limit);
}

static void refuse_descriptors() {
  const int next = dup(0);
  close(next);
  limit_descriptors(static_cast<rlim_t>(next));
}

static void end_fault() {
  g_no_processes = g_no_threads = g_hidden_processes = false;
  limit_descriptors(1024);
}

static std::string error_reply(const std::string& code, const std::string& message,
                               const std::string& log_tail) {
  return "{code: " + code + ", message: " + message + ", logTail: " + log_tail + "}";
}

static std::string config_missing() {
  return error_reply("config_failed",
                     "zant 配置文件不存在: \n"
                     "Dart 侧 ZantConfigBuilder 必须先写入 JSON 再调 startVPN。",
                     "");
}

static std::string not_running(const std::string& log_tail) {
  return error_reply("core_exec_failed",
                     "zant 进程未能启动。\n"
                     "常见原因：glibc 版本不兼容 / 配置非法 / TUN 模式但无 CAP_NET_ADMIN。\n"
                     "建议：用 corvana-helper.service 跑（已自动持有 CAP_NET_ADMIN）。",
                     log_tail);
}

static std::string port_not_ready(const std::string& port, const std::string& log_tail) {
  return error_reply(
      "port_not_ready",
      "zant 已启动但 clash-api 端口 " + port + " 在 4 秒内未监听。\n可能配置加载失败或端口被占用。",
      log_tail);
}

namespace {

// The host's own code behind its channels, with a good core in the last place where it looks.
class Service : public testing::Test {
 protected:
  Service() {
    write_file("config.json", R"({"inbounds": [{"type": "mixed", "listen_port": 7890}],
        "experimental": {"clash_api": {"external_controller": "127.0.0.1:9090"}}})");
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    home_.add_recorders({"gsettings"});
    fs::create_directories("/opt/corvana/bin");
    install_core();
  }
  ~Service() override {
    begin_leaving();
    wait_for_workers();
    terminate_core();
    fs::remove_all("/opt/corvana");
  }

  static void install_core() {
    fs::remove("/opt/corvana/bin/zant");  // one that runs can't be written to
    fs::copy_file(GOOD_CORE, "/opt/corvana/bin/zant");
  }

  static FlValue* arguments(const char* config, int mode = 1) {
    FlValue* const args = fl_value_new_map();
    fl_value_set_string_take(args, "configPath", fl_value_new_string(config));
    fl_value_set_string_take(args, "proxyMode", fl_value_new_int(mode));
    return args;
  }

  // "done", the code of the failure, or "no end".
  std::string start(const char* config = "config.json") {
    g_autoptr(FlValue) args = arguments(config);
    std::string end = finish("startVPN", args);
    if (end != "failed") return end;
    const std::string error = client_.call("getLastError");
    return error.substr(7, error.find(',') - 7);
  }

  // The waits of a task together take 8 seconds at most. While it runs the channel answers.
  std::string finish(const char* method, FlValue* args = nullptr) {
    client_.call(method, args);
    std::string status;
    const auto is_complete = [&] {
      status = client_.call("checkTaskComplete");
      return status.find("isComplete: true") != status.npos;
    };
    if (!run_main_loop_until(is_complete, 15s)) return "no end";
    return status.find("taskResult: true") == status.npos ? "failed" : "done";
  }

  // The modes of the desktop's proxy, in the order in which they were set.
  std::string gnome_modes() const {
    std::string modes;
    for (const std::string& command : home_.recorded_commands()) {
      const size_t mode = command.find(" mode ");
      if (mode != command.npos) modes += command.substr(mode + 6) + ";";
    }
    return modes;
  }

  const TemporaryHome home_;
  ChannelClient client_;
};

struct Fault {
  const char* name;
  const char* outcomes;      // one of them: "done" or codes
  const char* program = "";  // what stands in for it while the fault lasts
  const char* script = "";
  void (*begin)() = [] {};
  std::string error = {};    // the whole record, when it is of interest
  std::string console = {};  // standard error, likewise
  const char* path = "config.json";
  const char* config = nullptr;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class Faults : public Service, public testing::WithParamInterface<Fault> {};

}  // namespace

TEST_P(Faults, EndInAnAnswerAndTheNextStartWorks) {
  const Fault& fault = GetParam();
  const std::string good_config = read_file("config.json");
  if (*fault.program != '\0') {
    home_.add_stand_in(fault.program, std::string("#!/bin/sh\n") + fault.script);
  }
  // After this start the main loop and the sanitizers have opened every descriptor that they need.
  EXPECT_EQ(start("missing.json"), "config_failed");
  write_file(fault.path, fault.config == nullptr ? good_config : fault.config);
  testing::internal::CaptureStderr();
  fault.begin();
  const std::string outcome = start(fault.path);
  end_fault();
  const std::string console = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(!outcome.empty() && strstr(fault.outcomes, outcome.c_str()) != nullptr) << outcome;
  const std::string error = client_.call("getLastError");
  EXPECT_EQ(error, fault.error.empty() ? error : fault.error);
  EXPECT_EQ(console, fault.console.empty() ? console : fault.console);
  EXPECT_EQ(is_core_running(), outcome == "done");
  EXPECT_EQ(gnome_modes(), outcome == "done" ? "manual;" : "") << "else the proxy stays as it is";
  EXPECT_FALSE(fs::exists("executed"));

  if (*fault.program != '\0') fs::remove(home_.bin() + "/" + fault.program);
  install_core();
  write_file("config.json", good_config);
  g_autoptr(FlValue) args = arguments("config.json");
  EXPECT_EQ(client_.call("startVPN", args), "true");
  EXPECT_EQ(client_.call("getLastError"), error_reply("", "", "")) << "already while it runs";
  EXPECT_EQ(finish("checkVpnIsOpen"), "done");
  EXPECT_EQ(client_.call("getLastError"), error_reply("", "", ""));
}

// Whether the probe still sees a core that ends at once depends on timing.
static const char k_not_up[] = "core_exec_failed or port_not_ready";

static const std::string k_lines = "y\ny\ny\ny\ny\ny\ny\ny\ny\ny\ny\ny\ny\n",
                         k_39_lines = k_lines + k_lines + k_lines;

static const Fault k_faults[] = {
    {"NoConfiguration", "config_failed", "", "", [] {}, config_missing(), {}, ""},
    {"CoreExitsAtOnce", k_not_up, "zant", "exit 1"},
    {"CoreListensLate", "done", "zant", "sleep 2; exec " GOOD_CORE " \"$@\""},
    {"CoreIsDeleted", k_not_up, "nohup", "rm /opt/corvana/bin/zant; exec /usr/bin/nohup \"$@\""},
    {"CoreNeverListens", "port_not_ready", "zant",
     "yes | head -99; echo 'de\xFF'; while sleep 0.1; do :; done", [] {},
     port_not_ready("9090", k_39_lines + "de\uFFFD\n"),
     "[Corvana] zant 端口未就绪\n" + k_39_lines + "de\xFF\n\n"},
    {"CoreLivesShortly", "port_not_ready", "zant", "sleep 0.6", [] {}, port_not_ready("0", ""),
     "[Corvana] 警告：无法从 JSON 解析 clash_api 端口，将仅基于进程存活判断成功\n"
     "[Corvana] zant 端口未就绪\n\n",
     "config.json", "{}"},
    {"CoreIsNeverSeen", "core_exec_failed", "nohup", "echo a tail",
     [] { g_hidden_processes = true; }, not_running("a tail\n"),
     "[Corvana] zant 进程未启动\na tail\n\n"},
    // The shell would run what follows the line feed.
    {"LineFeedInPath", "core_exec_failed", "", "", [] {}, not_running(""),
     "[Corvana] zant 进程未启动\n\n", "a\n>executed"},
    {"NoDescriptors", "core_exec_failed", "", "", refuse_descriptors},
    {"NoCommands", "core_exec_failed", "", "", [] { g_no_processes = true; }},
    {"NoProcessesOrThreads", "thread_failed", "", "", [] { g_no_processes = g_no_threads = true; }},
};

INSTANTIATE_TEST_SUITE_P(Of, Faults, testing::ValuesIn(k_faults));

TEST_F(Service, StartsTwiceAndStops) {
  const auto begun = std::chrono::steady_clock::now();
  g_autoptr(FlValue) with_proxy = arguments("config.json");
  g_autoptr(FlValue) without_proxy = arguments("config.json", 4);
  EXPECT_EQ(client_.call("startVPN", with_proxy), "true");
  EXPECT_EQ(client_.call("startVPN", without_proxy), "true");
  EXPECT_EQ(finish("stopVPN"), "done") << "of the first, or of a later one";
  EXPECT_TRUE(run_main_loop_until([&] { return gnome_modes() == "manual;none;none;"; }, 15s));
  wait_for_workers();
  // A second each after the end of the first core and of the second one.
  EXPECT_GE(std::chrono::steady_clock::now() - begun, 2s);
  EXPECT_EQ(client_.call("checkVpnIsOpen"), "false");
  testing::internal::CaptureStdout();
  EXPECT_EQ(finish("stopVPN"), "done");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "代理服务未运行\n");
}

TEST_F(Service, WithoutPortsACoreThatLivesIsASuccess) {
  home_.add_stand_in("zant", "#!/bin/bash\nexec -a \"zant $1 $2\" sleep 99\n");
  write_file("config.json", "{}");
  EXPECT_EQ(start(), "done");
  EXPECT_EQ(gnome_modes(), "");
}

TEST_F(Service, ReportsAStartAndAStopThatTriesOnceMore) {
  testing::internal::CaptureStdout();
  ASSERT_EQ(start(), "done");
  home_.add_stand_in("pkill", "#!/bin/sh\nrm $0\necho \"pkill $*\" >>commands\n");
  EXPECT_EQ(finish("stopVPN"), "done");
  const std::string run_dir = home_.path() + "/.local/share/Corvana/run";
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[Corvana] 执行(zant): nohup /opt/corvana/bin/zant run -c config.json -D " + run_dir +
                " > " + run_dir + "/runtime.log 2>&1 &\n" +
                "[Corvana] zant 启动成功，clash_api=9090 mixed=7890\n"
                "[Corvana] 已设置系统代理 (DE=gnome, HTTP=7890, SOCKS=7890)\n"
                "[Corvana] 已清除系统代理 (DE=gnome)\n已成功强制终止代理服务\n");
  EXPECT_EQ(home_.recorded_commands().back(), "pkill -9 -f zant +run +-c") << "after the clear";
}

TEST_F(Service, AStopWithoutCommandsOrThreadsFailsAndTheNextTakesTheProxyBack) {
  ASSERT_EQ(start(), "done");
  g_no_processes = true;
  testing::internal::CaptureStderr();
  EXPECT_EQ(finish("stopVPN"), "failed");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "停止代理服务失败，尝试强制终止...\n无法终止代理服务\n");
  g_no_threads = true;
  EXPECT_EQ(finish("stopVPN"), "failed");
  EXPECT_EQ(client_.call("getLastError").rfind("{code: thread_failed, message: 无法", 0), 0u);
  end_fault();
  EXPECT_EQ(finish("stopVPN"), "done");
  EXPECT_EQ(client_.call("checkVpnIsOpen"), "false");
  EXPECT_EQ(gnome_modes(), "manual;none;");
}

// At the first probe nothing is done yet. At the second the core has been launched, and the proxy
// of an earlier core that ended by itself may still be set. At the third no probe has seen a core;
// a real one can be missed while the shell becomes the core's program.
class CutOffStart : public Service, public testing::WithParamInterface<int> {};

TEST_P(CutOffStart, TakesTheProxyBackOnceItHasLaunchedACore) {
  g_hidden_processes = GetParam() == 3;
  if (g_hidden_processes) home_.add_stand_in("nohup", "#!/bin/sh\n");
  g_autoptr(FlValue) args = arguments("config.json");
  g_probes_before_leaving = GetParam();
  start_vpn_thread(fl_value_ref(args));
  EXPECT_EQ(args->references, 1) << "its own reference is released";
  end_fault();
  EXPECT_EQ(gnome_modes(), GetParam() == 1 ? "" : "none;");
  EXPECT_FALSE(is_core_running());
}

INSTANTIATE_TEST_SUITE_P(AtProbe, CutOffStart, testing::Values(1, 2, 3));

static std::pair<long, long> descriptors_and_threads() {
  return {std::distance(fs::directory_iterator("/proc/self/fd"), {}),
          std::distance(fs::directory_iterator("/proc/self/task"), {})};
}

TEST_F(Service, StartsAndStopsLeaveNothingBehind) {
  const int cycles = std::getenv("CORVANA_LONG_TESTS") == nullptr ? 14 : 200;
  std::pair<long, long> after_ten_cycles;
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    ASSERT_EQ(start(), "done") << cycle;
    ASSERT_EQ(finish("stopVPN"), "done") << cycle;
    if (cycle != 10 && cycle != cycles) continue;
    run_main_loop_until([] { return false; }, 500ms);  // the worker's very last steps
    if (cycle == 10) after_ten_cycles = descriptors_and_threads();
  }
  EXPECT_EQ(descriptors_and_threads(), after_ten_cycles);
}
