#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "core/start_task.h"
#include "flutter_embedding/values/value.h"
#include "host_process/host_process.h"
#include "proxy_service/tasks.h"
#include "support/channel_client.h"
#include "support/leaving.h"

#define GOOD_CORE CORVANA_BUNDLE "/bin/zant"

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// The system's functions, but for what a case has them refuse or pretend.
static std::atomic<bool> g_no_processes{false}, g_no_threads{false}, g_hidden_processes{false},
    g_leaves_at_probe{false}, g_falling_clock{false};

extern "C" {
int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* argv, char* const* envp) {
  if (g_no_processes) return EAGAIN;
  static const auto real =
      reinterpret_cast<decltype(&posix_spawn)>(dlsym(RTLD_NEXT, "posix_spawn"));
  return real(pid, path, actions, attributes, argv, envp);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                   void* argument) {
  if (g_no_threads) return EAGAIN;
  static const auto real =
      reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return real(thread, attributes, body, argument);
}

// Where processes are hidden, a user sees his own and no core that runs under another user.
DIR* opendir(const char* path) {
  static const auto real = reinterpret_cast<decltype(&opendir)>(dlsym(RTLD_NEXT, "opendir"));
  if (g_leaves_at_probe) begin_leaving();
  return real(g_hidden_processes && std::string(path) == "/proc" ? "/proc/self/task" : path);
}

int clock_gettime(clockid_t clock, timespec* now) {
  static const auto real =
      reinterpret_cast<decltype(&clock_gettime)>(dlsym(RTLD_NEXT, "clock_gettime"));
  static std::atomic<long> times_set_back{0};
  const int result = real(clock, now);
  if (clock == CLOCK_REALTIME && g_falling_clock) now->tv_sec -= ++times_set_back;
  return result;
}
}

static void limit_descriptors(rlim_t most) {
  const rlimit limit = {most, 1024};
  setrlimit(RLIMIT_NOFILE, &limit);
}

static void refuse_descriptors() {
  const int next = dup(0);
  close(next);
  limit_descriptors(static_cast<rlim_t>(next));
}

static void end_fault() {
  g_no_processes = g_no_threads = g_hidden_processes = g_falling_clock = false;
  limit_descriptors(1024);
}

namespace {

// The host's own code behind its channels, with a good core in the last place where it looks.
class Host : public HostTest {
 protected:
  Host() {
    setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
    home_.add_recorders({"gsettings"});
    fs::create_directories("/opt/corvana/bin");
    install_core();
  }
  ~Host() override {
    wait_for_workers();
    system("pkill -9 -f 'zant +run +-c'");
    fs::remove_all("/opt/corvana");
  }

  static void install_core() {
    fs::remove("/opt/corvana/bin/zant");  // one that runs can't be written to
    fs::copy_file(GOOD_CORE, "/opt/corvana/bin/zant");
  }

  // "done", the code of the failure, or "no end".
  std::string start(const char* config = "config.json") {
    g_autoptr(FlValue) args = fl_value_new_map();
    fl_value_set_string_take(args, "configPath", fl_value_new_string(config));
    std::string end = finish("startVPN", args);
    if (end != "failed") return end;
    const std::string error = client_.call("getLastError");
    EXPECT_TRUE(g_utf8_validate(error.data(), static_cast<gssize>(error.size()), nullptr));
    return error.substr(7, error.find(',') - 7);
  }

  // The waits of a task together take 8 seconds at most.
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

  ChannelClient client_;
};

struct Fault {
  const char* name;
  const char* outcomes;      // one of them: "done" or codes
  const char* program = "";  // what stands in for it while the fault lasts
  const char* script = "";
  void (*begin)() = [] {};
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class Faults : public Host, public testing::WithParamInterface<Fault> {};

}  // namespace

TEST_P(Faults, EndInAnAnswerAndTheNextStartWorks) {
  const Fault& fault = GetParam();
  const std::string script = std::string("#!/bin/sh\n") + fault.script;
  if (*fault.program != '\0') home_.add_stand_in(fault.program, script);
  // By now the main loop and the sanitizers have the descriptors that they go on to need.
  EXPECT_EQ(start("missing.json"), "config_failed");
  fault.begin();
  const std::string outcome = start();
  end_fault();
  EXPECT_TRUE(!outcome.empty() && strstr(fault.outcomes, outcome.c_str()) != nullptr) << outcome;

  if (*fault.program != '\0') fs::remove(home_.bin() + "/" + fault.program);
  install_core();
  EXPECT_EQ(start(), "done");
}

// Whether the probe still sees a core that ends at once is a matter of moments.
static const char k_not_up[] = "core_exec_failed or port_not_ready";

static const Fault k_faults[] = {
    {"CoreExitsAtOnce", k_not_up, "zant", "exit 1"},
    {"CorePrintsGarbageAndNeverListens", "port_not_ready", "zant",
     "head -c 300000 /dev/urandom; while sleep 0.1; do :; done"},
    {"CoreListensLate", "done", "zant", "sleep 2; exec " GOOD_CORE " \"$@\""},
    {"CoreIgnoresItsConfiguration", "port_not_ready", "zant",
     "sed s/9090/9091/ \"$3\" >other.json; exec " GOOD_CORE " run -c other.json"},
    {"CoreIsDeleted", k_not_up, "nohup", "rm /opt/corvana/bin/zant; exec /usr/bin/nohup \"$@\""},
    {"CoreIsReplaced", k_not_up, "nohup",
     "head -c 5000 /dev/urandom >/opt/corvana/bin/zant; exec /usr/bin/nohup \"$@\""},
    {"NoDescriptors", "core_exec_failed", "", "", refuse_descriptors},
    {"NoCommands", "core_exec_failed", "", "", [] { g_no_processes = true; }},
    {"NoProcessesOrThreads", "thread_failed", "", "", [] { g_no_processes = g_no_threads = true; }},
    {"HiddenProcesses", "core_exec_failed", "", "", [] { g_hidden_processes = true; }},
    {"ClockSetBack", "done", "zant", "sleep 1; exec " GOOD_CORE " \"$@\"",
     [] { g_falling_clock = true; }},
};

INSTANTIATE_TEST_SUITE_P(Of, Faults, testing::ValuesIn(k_faults));

TEST_F(Host, AStopTriesOnceMore) {
  ASSERT_EQ(start(), "done");
  home_.add_stand_in("pkill", "#!/bin/sh\nrm $0\n");
  testing::internal::CaptureStdout();
  EXPECT_EQ(finish("stopVPN"), "done");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[Corvana] 已清除系统代理 (DE=gnome)\n已成功强制终止代理服务\n");
}

TEST_F(Host, AStopWithoutCommandsOrThreadsFailsAndTheNextTakesTheProxyBack) {
  ASSERT_EQ(start(), "done");
  g_no_processes = true;
  testing::internal::CaptureStderr();
  EXPECT_EQ(finish("stopVPN"), "failed");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "停止代理服务失败，尝试强制终止...\n无法终止代理服务\n");
  g_no_threads = true;
  EXPECT_EQ(finish("stopVPN"), "failed");
  EXPECT_EQ(client_.call("getLastError").rfind("{code: thread_failed, message: 无法", 0), 0u);
  EXPECT_EQ(client_.call("checkVpnIsOpen"), "true");
  end_fault();
  EXPECT_EQ(finish("stopVPN"), "done");
  EXPECT_EQ(client_.call("checkVpnIsOpen"), "false");
  EXPECT_EQ(home_.recorded_commands().back(), "gsettings set org.gnome.system.proxy.socks port 0");
}

TEST_F(Host, AStartThatIsCutOffBeforeItHasDoneAnythingTakesNothingBack) {
  g_autoptr(FlValue) args = fl_value_new_map();
  fl_value_set_string_take(args, "configPath", fl_value_new_string("config.json"));
  g_leaves_at_probe = true;
  start_vpn_thread(fl_value_ref(args));
  EXPECT_EQ(args->references, 1) << "its own reference is released";
  EXPECT_EQ(home_.recorded_commands(), std::vector<std::string>());
}

static long entries_of(const char* directory) {
  return std::distance(fs::directory_iterator(directory), {});
}

static size_t bytes_in_use() {
  // A sanitizer brings an allocator of its own.
  static void* const counter = dlsym(RTLD_DEFAULT, "__sanitizer_get_current_allocated_bytes");
  if (counter != nullptr) return reinterpret_cast<size_t (*)()>(counter)();
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

TEST_F(Host, StartsAndStopsLeaveNothingBehind) {
  const int cycles = std::getenv("CORVANA_LONG_TESTS") == nullptr ? 14 : 200;
  long descriptors = 0, threads = 0;
  size_t bytes = 0;
  for (int cycle = 1; cycle <= cycles; ++cycle) {
    ASSERT_EQ(start(), "done") << cycle;
    ASSERT_EQ(finish("stopVPN"), "done") << cycle;
    if (cycle != 10) continue;
    run_main_loop_until([] { return false; }, 500ms);  // the worker's very last steps
    descriptors = entries_of("/proc/self/fd");
    threads = entries_of("/proc/self/task");
    bytes = bytes_in_use();
  }
  run_main_loop_until([] { return false; }, 500ms);
  EXPECT_EQ(entries_of("/proc/self/fd"), descriptors);
  EXPECT_EQ(entries_of("/proc/self/task"), threads);
  EXPECT_LT(bytes_in_use(), bytes + 4096);  // room for a cache's next block
  std::printf("after the 10th cycle %zu bytes in use, after the %dth %zu\n", bytes, cycles,
              bytes_in_use());
}
