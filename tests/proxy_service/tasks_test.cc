#include "proxy_service/tasks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include "support/leaving.h"
#include "support/shell_command.h"

using namespace std::chrono_literals;

// Stand-ins for time: the wait has lasted this long, and each look adds a millisecond. The last
// command ended 5 ms after the wait began.
static std::atomic<std::chrono::milliseconds> g_waited{0ms};

bool is_leaving() { return true; }
void look_for_exit_signals() {}
bool is_wait_over(std::chrono::steady_clock::time_point, std::chrono::milliseconds limit) {
  g_waited = g_waited.load() + 1ms;
  return g_waited.load() >= limit;
}
std::chrono::milliseconds time_since_shell_activity() { return g_waited.load() - 5ms; }

TEST(Tasks, RunInTheOrderAskedForAndPublish) {
  static std::string order;
  static std::atomic<bool> all_started{false};
  for (const char* name : {"1", "2", "3", "4"}) {
    ASSERT_TRUE(start_worker([name] {
      run_task([name]() -> bool {
        while (!all_started) std::this_thread::yield();
        order += name;
        if (*name == '3') throw std::runtime_error("ends only its own task");
        return true;
      });
    }));
    EXPECT_FALSE(read_task_state().complete);
  }
  all_started = true;
  EXPECT_TRUE(wait_for_workers());
  EXPECT_EQ(order, "1234");
  EXPECT_TRUE(read_task_state().complete && read_task_state().result);
  ASSERT_TRUE(start_worker([] { run_task([]() -> bool { throw std::runtime_error("fails"); }); }));
  EXPECT_TRUE(wait_for_workers());
  EXPECT_TRUE(read_task_state().complete && !read_task_state().result);
}

TEST(Tasks, AWorkerIsGivenUpAfterEightSecondsOfSilence) {
  static std::atomic<bool> may_end{false};
  ASSERT_TRUE(start_worker([] {
    while (!may_end) std::this_thread::yield();
  }));
  g_waited = 7998ms;
  EXPECT_FALSE(wait_for_workers());
  EXPECT_EQ(g_waited.load(), 8005ms);
  g_waited = 0ms;
  may_end = true;
  EXPECT_TRUE(wait_for_workers());
}
