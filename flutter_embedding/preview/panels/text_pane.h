#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_TEXT_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_TEXT_PANE_H_

#include <gtk/gtk.h>

#include <functional>
#include <string_view>

namespace preview {

// A read-only monospaced text with a frame and a scroll bar. `widget` is floating and owns the
// others. Main thread only.
struct TextPane {
  GtkWidget* widget;
  GtkTextView* view;
  GtkTextBuffer* buffer;
  GtkAdjustment* position;
};

TextPane text_pane_new(const char* accessible_name);

// Makes the pane go to the end of its text whenever the text's or the pane's size has changed and
// `is_wanted` returns true.
void text_pane_follow_end(const TextPane& pane, std::function<bool()> is_wanted);

inline constexpr int k_max_log_lines = 5000;
// The rest of a longer line is dropped: a core that writes no line feeds must not make the view
// unusable.
inline constexpr std::size_t k_max_log_line_size = 4096;

// Appends a batch of lines (joined by line feeds, none at the end) and drops the oldest lines
// beyond k_max_log_lines. Bytes that aren't UTF-8 show as U+FFFD.
void text_pane_append(const TextPane& pane, std::string_view batch);

}  // namespace preview

#endif
