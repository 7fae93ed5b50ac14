#include "core/workers.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>

#include "support/shell_command.h"

using namespace std::chrono_literals;

// A leaving worker's longest silence is one hung command, which is ended after 5 seconds.
static constexpr auto k_hopeless_silence = 8s;
static constexpr auto k_check_interval = 200ms;

// g_workers_mutex owns both numbers, the condition tells of each change. Workers are numbered from
// 0 as they are started, and the one whose number is g_workers_finished has its turn.
static std::mutex g_workers_mutex;
static std::condition_variable g_worker_finished;
static unsigned long g_workers_started = 0;
static unsigned long g_workers_finished = 0;

static void wait_for_turn(unsigned long number) {
  std::unique_lock<std::mutex> lock(g_workers_mutex);
  g_worker_finished.wait(lock, [number] { return g_workers_finished == number; });
}

static void finish_turn() {
  const std::lock_guard<std::mutex> lock(g_workers_mutex);
  ++g_workers_finished;
  g_worker_finished.notify_all();
}

static void run_worker(unsigned long number, const std::function<void()>& work) {
  wait_for_turn(number);
  try {
    work();
  } catch (const std::exception&) {
    // The work publishes its own failures; out of here, an exception would end the process.
  }
  finish_turn();
}

bool start_worker(std::function<void()> work) {
  const std::lock_guard<std::mutex> lock(g_workers_mutex);
  try {
    std::thread([number = g_workers_started, work = std::move(work)] {
      run_worker(number, work);
    }).detach();
    ++g_workers_started;
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool wait_for_workers() {
  const auto started = std::chrono::steady_clock::now();
  std::unique_lock<std::mutex> lock(g_workers_mutex);
  const auto all_finished = [] { return g_workers_finished == g_workers_started; };
  while (!g_worker_finished.wait_for(lock, k_check_interval, all_finished)) {
    const auto waited = std::chrono::steady_clock::now() - started;
    if (waited > k_hopeless_silence && time_since_shell_activity() > k_hopeless_silence) {
      return false;
    }
  }
  return true;
}
