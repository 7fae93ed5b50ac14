#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_TEXT_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_TEXT_PANE_H_

#include <gtk/gtk.h>

#include <string>
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

// Makes the pane go to the end of its text whenever the text's or the pane's size has changed.
void text_pane_follow_end(const TextPane& pane);

inline constexpr std::size_t k_max_log_lines = 5000;
// The rest of a longer line is dropped: a core that writes no line feeds must not make the view
// unusable.
inline constexpr std::size_t k_max_log_line_size = 4096;

// The line as the panes show it: cut, without characters at which GTK ends a line, and valid UTF-8:
// other bytes become U+FFFD.
std::string shown_line(std::string_view line);

// Append or prepend lines, joined by line feeds, without one at the end. Each is shown as above.
// The selection stays. Appending drops the oldest lines beyond `max_lines`.
void text_pane_append(const TextPane& pane, std::string_view lines,
                      std::size_t max_lines = k_max_log_lines);
void text_pane_prepend(const TextPane& pane, std::string_view lines);

}  // namespace preview

#endif
