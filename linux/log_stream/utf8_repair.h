#ifndef CORVANA_LOG_STREAM_UTF8_REPAIR_H_
#define CORVANA_LOG_STREAM_UTF8_REPAIR_H_

#include <string>

// `text` with U+FFFD for each byte that is not part of a sequence of the shape that UTF-8 gives it,
// and for each NUL, at which the event would end. Only bit patterns count: overlong forms and
// surrogates pass. Pure; any bytes are taken.
std::string repair_utf8(std::string text);

#endif
