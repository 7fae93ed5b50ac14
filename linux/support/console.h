#ifndef CORVANA_SUPPORT_CONSOLE_H_
#define CORVANA_SUPPORT_CONSOLE_H_

#include <string>

// Opens /dev/null in the place of each standard stream that the launcher has closed: a later
// descriptor could become 1 or 2 and receive our output. Reports no failure. To be called before
// anything else is opened.
void keep_standard_streams_open();

// Both write `line` (UTF-8, may hold line feeds of its own) and a line feed to their stream and
// flush it; up to 4096 bytes go as one piece. A stream that can't be written to is no error. Both
// block while nobody reads; while the host is leaving, the rest of a line is dropped after
// k_console_limit. Any thread.
void print_line(const std::string& line);
void print_error_line(const std::string& line);

#endif
