#ifndef CORVANA_SAMPLE_CORE_LOG_H_
#define CORVANA_SAMPLE_CORE_LOG_H_

#include <string>

// Both write one whole line at once and flush it, may be called from any thread and report no
// failure. Control characters in `text` become '?', so that a client can't forge a line.

// Writes the local time and `text` (UTF-8) to standard output.
void log_event(const std::string& text);

// Writes "error: " and `text` (UTF-8) to standard error.
void print_error(const std::string& text);

#endif
