#ifndef CORVANA_PROXY_SERVICE_TASKS_H_
#define CORVANA_PROXY_SERVICE_TASKS_H_

#include <functional>

// A start or a stop is a task with a worker thread of its own. Tasks run one at a time, in the
// order in which their workers were started.

// What the user interface polls. With several tasks waiting, the first one to end sets `complete`.
struct TaskState {
  bool complete;  // a task has ended or was refused since the last one was announced
  bool result;    // the outcome of the task that finished last; kept while another one runs
};

// Both flags of one moment. Any thread.
TaskState read_task_state();

// Announces a task. A detached thread waits until all earlier workers have ended, then runs `body`,
// which has to call run_task(). False when no thread can be made: then the task is published as
// failed. Main thread.
bool start_worker(std::function<void()> body);

// Runs `task` under the lifecycle lock and publishes what it returns, or false when it throws.
// Blocks for as long as the task does. Called once by the body of a worker.
void run_task(const std::function<bool()>& task);

// Completes the task state: the result first, so that whoever sees the completion sees its result.
// Any thread.
void publish_task_result(bool result);

// Waits until no worker runs. False when the wait has lasted k_worker_silence_limit, and no shell
// command has begun or ended in the process for as long. Only while the host is leaving, on the
// thread of leave_cleanly().
bool wait_for_workers();

#endif
