#ifndef CORVANA_LOG_STREAM_LOG_LINES_H_
#define CORVANA_LOG_STREAM_LOG_LINES_H_

#include <string>
#include <string_view>

// Cuts `bytes`, the next piece of a log, into lines. Gives the complete ones that are not empty,
// without the carriage return at their end, joined by single line feeds. `unfinished` carries the
// start of a line from one piece to the next. Pure but for that; any bytes are taken.
std::string take_complete_lines(std::string& unfinished, std::string_view bytes);

#endif
