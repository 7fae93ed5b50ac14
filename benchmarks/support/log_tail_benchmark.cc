// The last 40 lines of a log of 100 MiB, which is read from its start.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "support/files.h"
#include "support/unique_fd.h"

static constexpr size_t k_file_size = size_t{100} * 1024 * 1024;
static std::string g_path;

static bool make_log() {
  char pattern[] = "/tmp/log-XXXXXX";
  close(mkstemp(pattern));
  g_path = pattern;
  std::string text;
  for (int line = 0; text.size() < k_file_size; ++line) {
    text += "+0800 2024-05-17 09:41:26 INFO [" + std::to_string(line) +
            " 12ms] inbound/mixed[mixed-in]: inbound connection to www.example.com:443\n";
  }
  text.resize(k_file_size);
  return write_whole_file(g_path, text);
}

static void tail(benchmark::State& state) {
  for (auto _ : state) {
    if (read_file_tail(g_path, 40).empty()) return state.SkipWithError("no tail");
  }
}
BENCHMARK(tail)->Unit(benchmark::kMillisecond);

static void read_once(benchmark::State& state) {
  static char chunk[64 * 1024];
  for (auto _ : state) {
    const UniqueFd file(open(g_path.c_str(), O_RDONLY | O_CLOEXEC));
    size_t total = 0;
    while (const ssize_t count = read(file.get(), chunk, sizeof chunk)) {
      if (count < 0) break;
      total += static_cast<size_t>(count);
    }
    if (total != k_file_size) return state.SkipWithError("not all was read");
  }
}
BENCHMARK(read_once)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (!make_log()) return 1;
  benchmark::RunSpecifiedBenchmarks();
  unlink(g_path.c_str());
}
