#ifndef CORVANA_CORE_START_FAILURES_H_
#define CORVANA_CORE_START_FAILURES_H_

#include <string>

// Each records why a start failed. Those with a log_path also record the log's last 40 lines, and
// print a line that names the failure, then those lines. Paths are shown as given. Any thread.

void record_config_missing(const std::string& config_path);
void record_core_missing();
void record_core_not_running(const std::string& log_path);
void record_port_not_ready(int clash_port, const std::string& log_path);

// For a start that is refused before a worker runs: the message also names the manual.
void record_core_missing_before_start();

// No thread could be made for a start or a stop, or a start ended in an exception. Doesn't throw:
// where memory has run out, the record stays as it is.
void record_thread_failed();

#endif
