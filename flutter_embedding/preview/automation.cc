#include "flutter_embedding/preview/automation.h"

#include <utility>

namespace preview {

struct Automation {
  enum class Step { first_answer, outcome, drawing, disconnect, done };

  Options options;
  Life life;
  AutomationActions actions;
  Step step = Step::first_answer;
  ServiceStatus status;
};

namespace {

// Time for the first lines of the log and the last frames of an animation.
constexpr unsigned k_settle_milliseconds = 900;
constexpr unsigned k_drawing_poll_milliseconds = 100;

using Step = Automation::Step;

bool is_settled(Phase phase) { return phase != Phase::checking && !is_busy(phase); }

void close(Automation* automation) {
  automation->step = Step::done;
  automation->actions.close();
}

void leave(Automation* automation) {
  if (!automation->options.quit) {
    automation->step = Step::done;
    return;
  }
  automation->step = Step::disconnect;
  if (automation->status.core_running) return automation->actions.disconnect();
  // A task that somebody began meanwhile is waited for.
  if (is_settled(automation->status.phase)) close(automation);
}

void draw(Automation* automation);

void draw_in(Automation* automation, unsigned milliseconds) {
  run_later(milliseconds, automation->life,
            [automation] { run_when_idle(automation->life, [automation] { draw(automation); }); });
}

void draw(Automation* automation) {
  if (!automation->actions.is_drawn()) return draw_in(automation, k_drawing_poll_milliseconds);
  if (!automation->options.screenshot.empty()) automation->actions.take_screenshot();
  leave(automation);
}

void begin_drawing(Automation* automation) {
  automation->step = Step::drawing;
  draw_in(automation, k_settle_milliseconds);
}

void take_first_answer(Automation* automation) {
  if (!automation->options.connect) return begin_drawing(automation);
  automation->step = Step::outcome;
  automation->actions.connect();
}

}  // namespace

std::shared_ptr<Automation> automation_new(const Options& options, const Life& life,
                                           AutomationActions actions) {
  auto automation = std::make_shared<Automation>();
  automation->options = options;
  automation->life = life;
  automation->actions = std::move(actions);
  return automation;
}

void automation_notice(Automation* automation, const ServiceStatus& status) {
  automation->status = status;
  if (!is_settled(status.phase)) return;
  switch (automation->step) {
    case Step::first_answer:
      return take_first_answer(automation);
    case Step::outcome:
      return begin_drawing(automation);
    case Step::disconnect:
      return close(automation);
    case Step::drawing:
    case Step::done:
      return;
  }
}

}  // namespace preview
