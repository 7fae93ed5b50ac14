#ifndef CORVANA_PROXY_SERVICE_REPLY_MAP_H_
#define CORVANA_PROXY_SERVICE_REPLY_MAP_H_

#include <flutter_linux/flutter_linux.h>

#include <string>

// Both insert a value under `key` into `map`, which they borrow. Any thread.

void set_bool(FlValue* map, const char* key, bool value);

// Paths, the core's output and the environment may hold any bytes: what is not UTF-8, and each NUL,
// becomes U+FFFD, because one bad byte would make the whole reply unreadable.
void set_text(FlValue* map, const char* key, const std::string& bytes);

#endif
