#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_LATER_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_LATER_H_

#include <functional>
#include <memory>

namespace preview {

// What waits for a reply or a timer holds a Life, and does nothing once the window's content has
// been destroyed.
using Life = std::weak_ptr<void>;

// Runs the task once from the main loop, no sooner than in `milliseconds`, if `life` still lasts
// then. Main thread only.
void run_later(unsigned milliseconds, const Life& life, std::function<void()> task);

// Runs the task once as soon as nothing is left to lay out or to draw, under the same condition.
void run_when_idle(const Life& life, std::function<void()> task);

}  // namespace preview

#endif
