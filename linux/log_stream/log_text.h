#ifndef CORVANA_LOG_STREAM_LOG_TEXT_H_
#define CORVANA_LOG_STREAM_LOG_TEXT_H_

#include <string>
#include <string_view>

// A log's bytes made into events. Any bytes are taken.

// Cuts `bytes`, the next piece of a log, into lines. Gives the complete ones that are not empty,
// without the carriage return at their end, joined by single line feeds. `unfinished` carries the
// start of a line from one piece to the next. Pure but for that.
std::string take_complete_lines(std::string& unfinished, std::string_view bytes);

// `text` with U+FFFD for each byte that is not part of a sequence of the shape that UTF-8 gives it,
// and for each NUL, at which the event would end. Only bit patterns count: overlong forms and
// surrogates pass. Pure.
std::string repair_utf8(std::string text);

#endif
