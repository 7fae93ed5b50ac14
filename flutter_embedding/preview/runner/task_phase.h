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
  lost,  // the core ended, and nobody had asked for it
};

// One answer of checkTaskComplete.
struct TaskReport {
  bool is_complete;
  bool task_result;  // still the previous task's until this one is complete
  bool core_running;
};

// Whether a task is under way.
bool is_busy(Phase phase);

// The phase after an answer. During a start or a stop, a complete answer may still be about the
// task before, or be ahead of the process table. So an outcome that the core's presence contradicts
// counts only once `patience_over` is true. Pure.
Phase next_phase(Phase now, const TaskReport& report, bool patience_over);

}  // namespace preview

#endif
