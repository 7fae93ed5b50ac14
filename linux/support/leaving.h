#ifndef CORVANA_SUPPORT_LEAVING_H_
#define CORVANA_SUPPORT_LEAVING_H_

#include <chrono>
#include <csignal>

// The flag that says that the host is leaving, and every time limit of leaving. Leaving can't be
// undone. Any thread, except where another one is named.

inline constexpr int k_exit_signals[] = {SIGTERM, SIGINT, SIGHUP};

// How long a wait sleeps between two checks. Some waits also look for exit signals then. A person
// doesn't notice a tenth of a second.
inline constexpr std::chrono::milliseconds k_check_interval{100};

// A desktop tool that works answers within a fraction of this, also on a slow machine.
inline constexpr std::chrono::milliseconds k_command_limit{5000};

// Where one tool hangs, its next calls hang too, and a clean-up has up to twenty of them.
inline constexpr std::chrono::milliseconds k_command_limit_after_hang{1000};

// A killed command or core ends within milliseconds, unless it waits for a dead disk.
inline constexpr std::chrono::milliseconds k_kill_limit{1000};

// A pager or a stopped terminal may never read the console again.
inline constexpr std::chrono::milliseconds k_console_limit{500};

// Longer than one command can hold a worker up, which is k_command_limit and k_kill_limit.
inline constexpr std::chrono::milliseconds k_worker_silence_limit{8000};

// From here on is_leaving() is true, and every sleep_unless_leaving() ends at once.
void begin_leaving();
bool is_leaving();

// Sleeps for `duration` of steady time. False when leaving began before it was over.
bool sleep_unless_leaving(std::chrono::milliseconds duration);

// True when the host is leaving and `limit` has passed since `began` and since leaving began.
// Before leaving there is no limit.
bool is_wait_over(std::chrono::steady_clock::time_point began, std::chrono::milliseconds limit);

// From here on none of k_exit_signals ends the process. To be called once, on the main thread,
// before there are workers.
void watch_exit_signals();

// From here on each of k_exit_signals ends the process again. Main thread.
void stop_watching_exit_signals();

// Begins leaving when an exit signal has arrived since watch_exit_signals(). The main loop looks
// for them itself; this is for waits that may hold the main loop up.
void look_for_exit_signals();

#endif
