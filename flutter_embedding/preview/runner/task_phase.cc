#include "flutter_embedding/preview/runner/task_phase.h"

namespace preview {
namespace {

Phase after_start(const TaskReport& report, bool timed_out) {
  if (!report.is_complete) return Phase::starting;
  if (!report.task_result) return Phase::start_failed;
  if (report.core_running) return Phase::connected;
  return timed_out ? Phase::lost : Phase::starting;
}

Phase after_stop(const TaskReport& report, bool timed_out) {
  if (!report.is_complete) return Phase::stopping;
  if (!report.core_running) return Phase::disconnected;
  if (!report.task_result || timed_out) return Phase::stop_failed;
  return Phase::stopping;
}

}  // namespace

bool is_busy(Phase phase) { return phase == Phase::starting || phase == Phase::stopping; }

Phase next_phase(Phase now, const TaskReport& report, bool timed_out) {
  switch (now) {
    case Phase::starting:
      return after_start(report, timed_out);
    case Phase::stopping:
      return after_stop(report, timed_out);
    case Phase::connected:
      return report.core_running ? Phase::connected : Phase::lost;
    case Phase::checking:
      return report.core_running ? Phase::connected : Phase::disconnected;
    case Phase::stop_failed:
      return report.core_running ? Phase::stop_failed : Phase::disconnected;
    case Phase::disconnected:
    case Phase::start_failed:
    case Phase::lost:
      return now;
  }
  return now;
}

}  // namespace preview
