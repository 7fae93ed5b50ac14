#ifndef CORVANA_FLUTTER_EMBEDDING_LATER_H_
#define CORVANA_FLUTTER_EMBEDDING_LATER_H_

#include <functional>
#include <memory>

// A task that waits for the main loop holds its owner's Life, and isn't run once the owner is
// destroyed.
using Life = std::weak_ptr<void>;

// Runs the task once from the main loop after about `milliseconds`, unless `life` has ended by
// then. A delay of 1000 or more is cut to whole seconds, and may be up to a second late. Tasks with
// the same delay run in the order in which they were given. An exception is reported as a GLib
// critical. Main thread only.
void run_later(unsigned milliseconds, const Life& life, std::function<void()> task);

// Like run_later, when the main loop has nothing more urgent. Text is laid out by then; animations
// may still wait for the next frame.
void run_when_idle(const Life& life, std::function<void()> task);

#endif
