#include "proxy_service/tasks.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "support/guarded.h"
#include "support/leaving.h"
#include "support/shell_command.h"

// g_mutex owns both flags. g_cv tells of each publication; the user interface polls instead, so
// nothing in this process waits on it.
static std::mutex g_mutex;
static std::condition_variable g_cv;
static bool g_task_complete = false;
static bool g_task_result = false;

// Held by a worker for its whole task and taken before any other lock. Never by the main thread,
// which would freeze behind a running task.
static std::mutex g_lifecycle_mutex;

// g_workers_mutex owns both numbers, g_worker_ended tells of each change. Workers are numbered from
// 0 as they are started; the one whose number is g_workers_ended has its turn. A mutex alone would
// let waiting workers overtake each other.
static std::mutex g_workers_mutex;
static std::condition_variable g_worker_ended;
static unsigned long g_workers_started = 0;
static unsigned long g_workers_ended = 0;

TaskState read_task_state() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return {g_task_complete, g_task_result};
}

static void begin_task() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_task_complete = false;
}

void publish_task_result(bool result) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_task_result = result;
  g_task_complete = true;
  g_cv.notify_all();
}

void run_task(const std::function<bool()>& task) {
  const std::lock_guard<std::mutex> lifecycle_lock(g_lifecycle_mutex);
  bool result = false;
  run_guarded([&] { result = task(); });
  publish_task_result(result);
}

static void run_worker(unsigned long number, const std::function<void()>& body) {
  std::unique_lock<std::mutex> lock(g_workers_mutex);
  g_worker_ended.wait(lock, [number] { return g_workers_ended == number; });
  lock.unlock();
  run_guarded(body);
  lock.lock();
  ++g_workers_ended;
  g_worker_ended.notify_all();
}

bool start_worker(std::function<void()> body) {
  begin_task();
  const bool started = run_guarded([&body] {
    const std::lock_guard<std::mutex> lock(g_workers_mutex);
    std::thread(run_worker, g_workers_started, std::move(body)).detach();
    ++g_workers_started;
  });
  if (!started) publish_task_result(false);
  return started;
}

bool wait_for_workers() {
  const auto began = std::chrono::steady_clock::now();
  std::unique_lock<std::mutex> lock(g_workers_mutex);
  const auto all_ended = [] { return g_workers_ended == g_workers_started; };
  while (!g_worker_ended.wait_for(lock, k_check_interval, all_ended)) {
    if (is_wait_over(began, k_worker_silence_limit) &&
        time_since_shell_activity() >= k_worker_silence_limit) {
      return false;
    }
  }
  return true;
}
