#ifndef CORVANA_CORE_WORKERS_H_
#define CORVANA_CORE_WORKERS_H_

#include <functional>

// Runs `work` on a detached thread of its own, once all that was started before has ended: a mutex
// alone would let waiting tasks overtake each other, and a person's last wish must win. False when
// no thread can be made; then `work` has not run and never will. An exception that `work` lets out
// ends that work and nothing else. Main thread.
bool start_worker(std::function<void()> work);

// Waits until no worker runs any more. False when some have shown no sign of life for so long that
// waiting on is hopeless. Meant for the way out, once is_leaving(). Main thread.
bool wait_for_workers();

#endif
