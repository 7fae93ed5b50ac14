// One probe over a thousand processes, none of which matches.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/core_process.h"
#include "core/process_probe.h"

static constexpr int k_processes = 1000;

static bool start_idle_processes() {
  for (int count = 0; count < k_processes; ++count) {
    const pid_t pid = fork();
    if (pid < 0) return false;
    if (pid > 0) continue;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    while (true) pause();
  }
  return true;
}

static void probe(benchmark::State& state) {
  for (auto _ : state) {
    if (is_process_running(k_core_name)) return state.SkipWithError("something matches");
  }
}
BENCHMARK(probe)->Unit(benchmark::kMicrosecond);

static std::vector<std::string> cmdline_paths() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (std::all_of(name.begin(), name.end(), isdigit)) paths.push_back(entry.path() / "cmdline");
  }
  return paths;
}

static void bare_loop(benchmark::State& state) {
  const std::vector<std::string> paths = cmdline_paths();
  if (paths.size() < k_processes) return state.SkipWithError("too few processes");
  char buffer[4096];
  for (auto _ : state) {
    for (const std::string& path : paths) {
      const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
      benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
      close(fd);
    }
  }
}
BENCHMARK(bare_loop)->Unit(benchmark::kMicrosecond);

// The processor time of one run, or nothing when it didn't end with "no match".
static std::optional<double> seconds_of_pgrep() {
  const char* const command[] = {"pgrep", "-f", k_core_name, nullptr};
  pid_t pid;
  int status = 0;
  rusage usage = {};
  const int error =
      posix_spawnp(&pid, command[0], nullptr, nullptr, const_cast<char* const*>(command), environ);
  if (error != 0 || wait4(pid, &status, 0, &usage) != pid) return std::nullopt;
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 1) return std::nullopt;
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

static void pgrep(benchmark::State& state) {
  for (auto _ : state) {
    const std::optional<double> seconds = seconds_of_pgrep();
    if (!seconds) return state.SkipWithError("pgrep failed");
    state.SetIterationTime(*seconds);
  }
}
BENCHMARK(pgrep)->Unit(benchmark::kMicrosecond)->UseManualTime();

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (!start_idle_processes()) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
