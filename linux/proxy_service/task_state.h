#ifndef CORVANA_PROXY_SERVICE_TASK_STATE_H_
#define CORVANA_PROXY_SERVICE_TASK_STATE_H_

#include <mutex>

// How the newest start or stop stands. The user interface polls it; nothing waits for it.
struct TaskState {
  bool complete;  // the task that was announced last has finished or was refused
  bool result;    // the outcome of the task that finished last; kept while another one runs
};

// Announces a task. Any thread.
void begin_task();

// Publishes an outcome: the result first, so that whoever sees the completion sees its result. Any
// thread; a worker does it as its last step, still holding the lifecycle lock.
void publish_task_result(bool result);

// Both flags of one moment. Any thread.
TaskState read_task_state();

// The lock that each worker holds for its whole run, so that starts and stops never overlap. It is
// taken before any other lock. Workers only: the main thread would freeze behind a running task.
std::unique_lock<std::mutex> lock_lifecycle();

#endif
