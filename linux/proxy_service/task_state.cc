#include "proxy_service/task_state.h"

#include <condition_variable>

// g_mutex owns both flags; g_cv tells of every publication.
static std::mutex g_mutex;
static std::condition_variable g_cv;
static bool g_task_complete = false;
static bool g_task_result = false;

static std::mutex g_lifecycle_mutex;

void begin_task() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_task_complete = false;
}

void publish_task_result(bool result) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  g_task_result = result;
  g_task_complete = true;
  g_cv.notify_all();
}

TaskState read_task_state() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return {g_task_complete, g_task_result};
}

std::unique_lock<std::mutex> lock_lifecycle() {
  return std::unique_lock<std::mutex>(g_lifecycle_mutex);
}
