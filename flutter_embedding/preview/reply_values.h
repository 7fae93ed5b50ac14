#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_REPLY_VALUES_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_REPLY_VALUES_H_

#include <flutter_linux/flutter_linux.h>

#include <optional>
#include <string>

namespace preview {

// Look a key up in what a channel brought, which may be null or of any type. A missing key or
// another type than the wanted one gives nothing. Texts come out as valid UTF-8, since widgets
// refuse any other.
std::optional<bool> bool_at(FlValue* map, const char* key);
std::optional<std::string> string_at(FlValue* map, const char* key);

}  // namespace preview

#endif  // CORVANA_FLUTTER_EMBEDDING_PREVIEW_REPLY_VALUES_H_
