// A start from the call to its completion, with the sample core and a settings tool that does
// nothing.

#include <benchmark/benchmark.h>
#include <flutter_linux/flutter_linux.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "core/core_process.h"
#include "flutter_embedding/engine.h"
#include "flutter_embedding/ui_channel.h"
#include "proxy_service/method_channel.h"
#include "proxy_service/tasks.h"
#include "support/files.h"
#include "support/shell_command.h"

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using std::chrono::steady_clock;

static constexpr char k_channel[] = "com.corvana.channel/proxy_service";
static constexpr std::chrono::duration<double> k_pause = 100ms;
static constexpr char k_mixed_port[] = "17890";
static std::string g_home;
static FlBinaryMessenger* g_messenger = nullptr;

static std::string config_path() { return g_home + "/config.json"; }

static void make_home() {
  char pattern[] = "/tmp/start-XXXXXX";
  g_home = mkdtemp(pattern);
  fs::create_directory(g_home + "/bin");
  fs::create_symlink(SAMPLE_CORE, g_home + "/bin/" + k_core_name);
  fs::create_symlink("/bin/true", g_home + "/bin/gsettings");
  write_whole_file(config_path(),
                   std::string(R"({"inbounds": [{"type": "mixed", "listen_port": )") +
                       k_mixed_port +
                       R"(}], "experimental": {"clash_api":)"
                       R"( {"external_controller": "127.0.0.1:19090"}}})");
  setenv("HOME", g_home.c_str(), 1);
  setenv("PATH", (g_home + "/bin:/usr/bin:/bin").c_str(), 1);
  setenv("CORE", (g_home + "/bin/" + k_core_name).c_str(), 1);
  setenv("CONFIG", config_path().c_str(), 1);
  setenv("FOLDER", g_home.c_str(), 1);
  setenv("PORT", k_mixed_port, 1);
  setenv("XDG_CURRENT_DESKTOP", "GNOME", 1);
}

static void open_channel() {
  g_messenger = fl_engine_get_binary_messenger(engine_new());
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  g_autoptr(FlMethodChannel) channel =
      fl_method_channel_new(g_messenger, k_channel, FL_METHOD_CODEC(codec));
  fl_method_channel_set_method_call_handler(channel, method_call_handler, nullptr, nullptr);
}

static bool call(const char* method, FlValue* args, const std::function<bool(FlValue*)>& judge) {
  bool answered = false;
  bool verdict = false;
  ui_invoke_method(g_messenger, k_channel, method, args, [&](const UiReply& reply) {
    answered = true;
    verdict = reply.value != nullptr && judge(reply.value);
  });
  while (!answered) g_main_context_iteration(nullptr, TRUE);
  return verdict;
}

static bool start_until_complete() {
  g_autoptr(FlValue) args = fl_value_new_map();
  fl_value_set_string_take(args, "configPath", fl_value_new_string(config_path().c_str()));
  if (!call("startVPN", args, fl_value_get_bool)) return false;
  while (!read_task_state().complete) std::this_thread::sleep_for(500us);
  return read_task_state().result;
}

static bool run_script() { return shell_command_succeeds(". '" START_COMMANDS "'"); }

static bool run_script_with_a_shell_for_each_command() {
  return shell_command_succeeds(
      "while IFS= read -r command; do case $command in '#'*) ;; *) sh -c \"$command\" ;; esac done"
      " <'" START_COMMANDS "'");
}

static void end_core() {
  while (is_core_running()) {
    terminate_core();
    std::this_thread::sleep_for(1ms);
  }
}

// Whole pauses of 100 ms are subtracted: they would hide what the host adds, which is far less than
// one.
static void measure(benchmark::State& state, bool (*action)()) {
  for (auto _ : state) {
    const auto begin = steady_clock::now();
    if (!action()) state.SkipWithError("it failed");
    const std::chrono::duration<double> took = steady_clock::now() - begin;
    const auto pauses = std::floor(took / k_pause) * k_pause;
    state.SetIterationTime((took - pauses).count());
    state.counters["pauses_ms"] = pauses.count() * 1000;
    end_core();
  }
}

static double fastest(const std::vector<double>& times) {
  return *std::min_element(times.begin(), times.end());
}

static void register_benchmark(const char* name, bool (*action)()) {
  benchmark::RegisterBenchmark(name, measure, action)
      ->Unit(benchmark::kMillisecond)
      ->Iterations(1)
      ->UseManualTime()
      ->ComputeStatistics("fastest", fastest);
}

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (std::getenv("CORVANA_SANDBOX") == nullptr) return 1;  // cores of others would be killed
  register_benchmark("start", start_until_complete);
  register_benchmark("script", run_script);
  register_benchmark("script_of_shells", run_script_with_a_shell_for_each_command);
  make_home();
  open_channel();
  benchmark::RunSpecifiedBenchmarks();
  fs::remove_all(g_home);
}
