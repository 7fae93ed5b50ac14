#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_TASK_PHASE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_TASK_PHASE_H_

namespace preview {

enum class Phase {
  checking,  // the first query is under way
  disconnected,
  starting,
  connected,
  stopping,
  start_failed,
  stop_failed,
  lost,  // the core ended without a stop
};

// One answer of checkTaskComplete.
struct TaskReport {
  bool is_complete;
  bool task_result;  // still the previous task's until this one is complete
  bool core_running;
};

// Whether a task is under way.
bool is_busy(Phase phase);

// The phase after an answer. During a start or a stop, a complete answer may be about the task
// before, or the process table may not show the change yet. So a success that the core's presence
// contradicts counts only when `timed_out` is true. Pure.
Phase next_phase(Phase now, const TaskReport& report, bool timed_out);

}  // namespace preview

#endif
