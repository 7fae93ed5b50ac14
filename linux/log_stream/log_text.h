#ifndef CORVANA_LOG_STREAM_LOG_TEXT_H_
#define CORVANA_LOG_STREAM_LOG_TEXT_H_

#include <string>
#include <string_view>

// A log's bytes made into events. Any bytes are taken.

// Cuts `bytes`, the next piece of a log, into lines. Gives the complete ones that are not empty,
// without the carriage return at their end, joined by single line feeds. `unfinished` carries the
// start of a line from one piece to the next. Pure but for that.
std::string take_complete_lines(std::string& unfinished, std::string_view bytes);

// `text` with U+FFFD in the place of each NUL, at which the event would end, and of each byte
// outside of a sequence with UTF-8's bit pattern. Overlong forms and surrogates have that pattern
// and stay. Pure.
std::string repair_utf8(std::string text);

#endif
