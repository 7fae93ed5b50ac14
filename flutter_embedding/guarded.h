#ifndef CORVANA_FLUTTER_EMBEDDING_GUARDED_H_
#define CORVANA_FLUTTER_EMBEDDING_GUARDED_H_

#include <functional>

// Runs the task and reports what it throws, which must not pass through GLib. Any thread.
void run_guarded(const std::function<void()>& task) noexcept;

#endif
