#ifndef CORVANA_PROXY_SERVICE_TEXT_VALUE_H_
#define CORVANA_PROXY_SERVICE_TEXT_VALUE_H_

#include <flutter_linux/flutter_linux.h>

#include <string>

// Inserts `bytes` as a string under `key` into `map`. Paths, the core's output and the environment
// may hold anything: what is not UTF-8, and each NUL, arrives as U+FFFD, since one bad byte would
// make the whole reply unreadable. Borrows `map`. Any thread.
void set_text(FlValue* map, const char* key, const std::string& bytes);

#endif
