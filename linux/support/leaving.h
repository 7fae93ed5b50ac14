#ifndef CORVANA_SUPPORT_LEAVING_H_
#define CORVANA_SUPPORT_LEAVING_H_

#include <chrono>

// Once the host has been told to leave, it stays told. Everything here may be called on any thread.

// From here on is_leaving() is true, and every sleep_unless_leaving() ends at once.
void begin_leaving();
bool is_leaving();

// From here on `signal_number`, one that GLib can watch for, begins the leaving too, even while the
// main loop is held up: whoever calls is_leaving() finds it. It doesn't end the process any more.
void leave_at_signal(int signal_number);

// Sleeps for `duration` of steady time. False when leaving has begun before it was over.
bool sleep_unless_leaving(std::chrono::milliseconds duration);

#endif
