#ifndef CORVANA_FLUTTER_EMBEDDING_LATER_H_
#define CORVANA_FLUTTER_EMBEDDING_LATER_H_

#include <functional>
#include <memory>

// What waits for the main loop holds a Life, and does nothing once its owner has been destroyed.
using Life = std::weak_ptr<void>;

// Runs the task once from the main loop, no sooner than in `milliseconds`, if `life` still lasts
// then. Tasks with the same delay run in the order in which they were given. What a task throws is
// reported as a GLib critical. Main thread only.
void run_later(unsigned milliseconds, const Life& life, std::function<void()> task);

// Runs the task once as soon as nothing is left to lay out or to draw, under the same condition.
void run_when_idle(const Life& life, std::function<void()> task);

#endif
