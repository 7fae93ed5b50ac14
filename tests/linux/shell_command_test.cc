#include "support/shell_command.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <atomic>
#include <thread>

#include "core/process_probe.h"
#include "core/workers.h"
#include "support/leaving.h"

using namespace std::chrono_literals;

TEST(ShellCommand, GivesTheStatusOfSystem) {
  for (const char* text : {"true", "exit 3", "kill -9 $$", "no-such-command 2>/dev/null", ""}) {
    EXPECT_EQ(run_shell_command(text), system(text)) << text;
  }
}

static volatile sig_atomic_t g_interrupts = 0;

TEST(ShellCommand, LosesNoInterruptWhileItWaits) {
  signal(SIGINT, [](int) { g_interrupts = g_interrupts + 1; });
  run_shell_command("kill -INT $PPID; sleep 0.1");
  EXPECT_EQ(g_interrupts, 1);
}

TEST(ShellCommand, ReadsTheFirstLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"printf ' a\\t\\r\\r\\nc\\n'", " a\t"}, {"printf '\\nb'", ""}, {"printf 'a\\0b\\n'", "a"},
      {"printf 1234567890", "1234567"},        {"true", ""},
  };
  for (const auto& [command, line] : rows) EXPECT_EQ(read_first_line(command, 8), line) << command;
}

TEST(Leaving, EndsAHungCommandWithItsChildrenAndThenHasNoPatience) {
  ASSERT_TRUE(start_worker([] {
    std::this_thread::sleep_for(200ms);
    begin_leaving();
  }));
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_TRUE(WIFSIGNALED(run_shell_command("sleep 98765 & wait")));
  const auto first = std::chrono::steady_clock::now();
  run_shell_command("sleep 98765 & wait");
  EXPECT_LT(std::chrono::steady_clock::now() - first, 2s);
  EXPECT_GT(first - begun, 5s);
  EXPECT_LT(first - begun, 7s);
  EXPECT_FALSE(is_process_running("98765"));
}

TEST(Leaving, CutsSleepsShortAndWaitsForWorkersUnlessStuck) {
  static std::atomic<bool> slept_whole{true}, done{false};
  ASSERT_TRUE(start_worker([] { throw std::runtime_error("ends only its own work"); }));
  ASSERT_TRUE(start_worker([] {
    slept_whole = sleep_unless_leaving(100s);
    std::this_thread::sleep_for(300ms);
  }));
  begin_leaving();
  EXPECT_TRUE(wait_for_workers());
  EXPECT_FALSE(slept_whole);
  ASSERT_TRUE(start_worker([] {
    while (!done) std::this_thread::sleep_for(10ms);
  }));
  EXPECT_FALSE(wait_for_workers());
  done = true;
  EXPECT_TRUE(wait_for_workers());
}
