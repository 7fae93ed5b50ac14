#include "support/shell_command.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/workers.h"
#include "support/console.h"
#include "support/leaving.h"

using namespace std::chrono_literals;

TEST(ShellCommand, GivesTheStatusOfSystem) {
  for (const char* text : {"true", "exit 3", "kill -9 $$", "no-such-command 2>/dev/null", ""}) {
    EXPECT_EQ(run_shell_command(text), system(text)) << text;
  }
}

TEST(ShellCommand, ReadsTheFirstLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"printf ' a\\t\\r\\r\\nc\\n'", " a\t"}, {"printf '\\nb'", ""}, {"printf 'a\\0b\\n'", "a"},
      {"printf 1234567890", "1234567"},        {"true", ""},
  };
  for (const auto& [command, line] : rows) EXPECT_EQ(read_first_line(command, 8), line) << command;
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

TEST(Leaving, ALineThatNobodyReadsIsGivenUp) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
  while (write(ends[1], "x", 1) == 1) {
  }
  fcntl(ends[1], F_SETFL, 0);
  dup2(ends[1], STDERR_FILENO);
  begin_leaving();
  print_error_line("lost");  // would wait for ever
}
