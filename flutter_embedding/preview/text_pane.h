#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_TEXT_PANE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_TEXT_PANE_H_

#include <gtk/gtk.h>

#include <functional>

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

// From now on the pane moves to the end of its text whenever the text, or the pane's size, has
// changed and `is_wanted` says so.
void text_pane_follow_end(const TextPane& pane, std::function<bool()> is_wanted);

}  // namespace preview

#endif  // CORVANA_FLUTTER_EMBEDDING_PREVIEW_TEXT_PANE_H_
