#ifndef CORVANA_FLUTTER_EMBEDDING_GUARDED_H_
#define CORVANA_FLUTTER_EMBEDDING_GUARDED_H_

#include <functional>

// Runs the task. An exception is reported as a GLib critical, because it must not pass through
// GLib. Any thread.
void run_guarded(const std::function<void()>& task) noexcept;

#endif
