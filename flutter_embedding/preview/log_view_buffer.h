#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_LOG_VIEW_BUFFER_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_LOG_VIEW_BUFFER_H_

#include <gtk/gtk.h>

#include <string_view>

namespace preview {

inline constexpr int k_most_log_lines = 5000;
// A core that forgets its line feeds must not make the view unusable; the rest of such a line is
// dropped.
inline constexpr std::size_t k_most_bytes_per_log_line = 4096;

// A buffer whose appended lines have the Chinese forms of the characters that Chinese and Japanese
// share, whatever the locale. Returns a new reference. Main thread only, needs a display.
GtkTextBuffer* log_view_buffer_new();

// Appends a batch of lines (joined by line feeds, none at the end) to any buffer and drops the
// oldest lines beyond the most. Bytes that aren't UTF-8 show as U+FFFD. Main thread only.
void log_view_append(GtkTextBuffer* buffer, std::string_view batch);

}  // namespace preview

#endif  // CORVANA_FLUTTER_EMBEDDING_PREVIEW_LOG_VIEW_BUFFER_H_
