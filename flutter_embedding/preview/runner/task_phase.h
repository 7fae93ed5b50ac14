#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_TASK_PHASE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_TASK_PHASE_H_

namespace preview {

enum class Phase {
  checking,  // the window has just opened and has asked for the first time
  disconnected,
  starting,
  connected,
  stopping,
  start_failed,
  stop_failed,
  lost,  // the core went away although nobody asked for it
};

// One answer of checkTaskComplete.
struct TaskReport {
  bool is_complete;
  bool task_result;  // still the previous task's until this one is complete
  bool core_running;
};

// A task runs, so its outcome is worth asking for several times a second.
bool is_busy(Phase phase);

// Where an answer leads. While a start or a stop is awaited, an answer can be complete and yet
// speak of another task, or be a moment ahead of the process table: an outcome that the core's
// presence contradicts is believed only once `patience_over` is true. Pure.
Phase next_phase(Phase now, const TaskReport& report, bool patience_over);

}  // namespace preview

#endif
