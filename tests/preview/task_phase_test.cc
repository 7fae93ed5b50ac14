#include "flutter_embedding/preview/task_phase.h"

#include <gtest/gtest.h>

using preview::Phase;

TEST(TaskPhase, FollowsTheAnswers) {
  const struct {
    Phase now;
    preview::TaskReport report;  // is_complete, task_result, core_running
    bool patience_over;
    Phase next;
  } rows[] = {
      {Phase::checking, {false, false, false}, false, Phase::disconnected},
      {Phase::checking, {false, false, true}, false, Phase::connected},
      // The result is still that of the task before.
      {Phase::starting, {false, true, true}, true, Phase::starting},
      {Phase::starting, {true, true, true}, false, Phase::connected},
      {Phase::starting, {true, true, false}, false, Phase::starting},
      {Phase::starting, {true, true, false}, true, Phase::lost},
      {Phase::starting, {true, false, true}, false, Phase::start_failed},
      {Phase::stopping, {false, true, false}, true, Phase::stopping},
      {Phase::stopping, {true, true, false}, false, Phase::disconnected},
      {Phase::stopping, {true, false, true}, false, Phase::stop_failed},
      {Phase::stopping, {true, true, true}, false, Phase::stopping},
      {Phase::stopping, {true, true, true}, true, Phase::stop_failed},
      {Phase::connected, {true, true, false}, false, Phase::lost},
      {Phase::stop_failed, {true, false, false}, false, Phase::disconnected},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(preview::next_phase(row.now, row.report, row.patience_over), row.next) << &row - rows;
  }
}
