#include "flutter_embedding/preview/text_pane.h"

#include <utility>

#include "flutter_embedding/preview/log_view_buffer.h"
#include "flutter_embedding/preview/widgets.h"

namespace preview {
namespace {

constexpr int k_text_margin = 6;

GtkTextView* view_new(const char* accessible_name) {
  g_autoptr(GtkTextBuffer) buffer = log_view_buffer_new();
  GtkWidget* widget = gtk_text_view_new_with_buffer(buffer);
  GtkTextView* view = GTK_TEXT_VIEW(widget);
  gtk_text_view_set_editable(view, FALSE);
  gtk_text_view_set_cursor_visible(view, FALSE);
  gtk_text_view_set_monospace(view, TRUE);
  gtk_text_view_set_wrap_mode(view, GTK_WRAP_WORD_CHAR);
  gtk_text_view_set_left_margin(view, k_text_margin);
  gtk_text_view_set_right_margin(view, k_text_margin);
  gtk_text_view_set_top_margin(view, k_text_margin);
  gtk_text_view_set_bottom_margin(view, k_text_margin);
  // Tab leaves the text, as it has nothing to insert.
  gtk_text_view_set_accepts_tab(view, FALSE);
  add_style_class(widget, "preview-value");
  atk_object_set_name(gtk_widget_get_accessible(widget), accessible_name);
  return view;
}

}  // namespace

TextPane text_pane_new(const char* accessible_name) {
  GtkTextView* view = view_new(accessible_name);
  GtkWidget* scrolled = scrolled_new(GTK_WIDGET(view));
  // A line that was wrapped for a wide window must not keep the window from becoming narrow.
  gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_EXTERNAL,
                                 GTK_POLICY_AUTOMATIC);
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  gtk_widget_set_vexpand(scrolled, TRUE);
  return {scrolled, view, gtk_text_view_get_buffer(view),
          gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled))};
}

void text_pane_follow_end(const TextPane& pane, std::function<bool()> is_wanted) {
  // The text's height is known only bit by bit, as lines are laid out; each bit arrives here.
  on_signal(pane.position, "changed", [position = pane.position, is_wanted = std::move(is_wanted)] {
    if (is_wanted()) gtk_adjustment_set_value(position, gtk_adjustment_get_upper(position));
  });
}

}  // namespace preview
