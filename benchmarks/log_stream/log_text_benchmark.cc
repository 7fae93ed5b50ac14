// One tick's worth of log text made into an event's text.

#include <benchmark/benchmark.h>
#include <glib.h>

#include <cstring>
#include <string>

#include "log_stream/log_text.h"

static constexpr size_t k_batch_size = size_t{64} * 1024;

namespace {

struct Mix {
  const char* name;
  int lines_per_chinese_line;  // 0: none is Chinese
};

}  // namespace

// What a core writes is ASCII but for names that people gave to servers and rules.
static constexpr Mix k_ascii = {"ascii", 0};
static constexpr Mix k_core_log = {"core_log", 20};
static constexpr Mix k_chinese = {"chinese", 1};

static std::string log_batch(const Mix& mix) {
  std::string text;
  for (int line = 1; text.size() < k_batch_size; ++line) {
    const std::string number = std::to_string(1000000 + line * 7919 % 1000000);
    const bool chinese = mix.lines_per_chinese_line != 0 && line % mix.lines_per_chinese_line == 0;
    text += "+0800 2024-05-17 09:41:26 INFO [" + number + " 12ms] ";
    text += chinese ? "outbound/香港节点-" + number.substr(5) + ": 已选择线路，开始连接目标服务器"
                    : "inbound/mixed[mixed-in]: inbound connection to host" + number +
                          ".example.com:443";
    text += '\n';
  }
  text.resize(k_batch_size);
  return text;
}

static void split_and_repair(benchmark::State& state, const Mix& mix) {
  const std::string batch = log_batch(mix);
  for (auto _ : state) {
    std::string unfinished;
    std::string text = repair_utf8(take_complete_lines(unfinished, batch));
    benchmark::DoNotOptimize(text.data());
  }
}
BENCHMARK_CAPTURE(split_and_repair, ascii, k_ascii);
BENCHMARK_CAPTURE(split_and_repair, core_log, k_core_log);
BENCHMARK_CAPTURE(split_and_repair, chinese, k_chinese);

static void copy_and_validate(benchmark::State& state, const Mix& mix) {
  const std::string batch = log_batch(mix);
  std::string copy(batch.size(), '\0');
  for (auto _ : state) {
    std::memcpy(copy.data(), batch.data(), batch.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::DoNotOptimize(g_utf8_validate(copy.data(), k_batch_size, nullptr));
  }
}
BENCHMARK_CAPTURE(copy_and_validate, ascii, k_ascii);
BENCHMARK_CAPTURE(copy_and_validate, core_log, k_core_log);
BENCHMARK_CAPTURE(copy_and_validate, chinese, k_chinese);

BENCHMARK_MAIN();
