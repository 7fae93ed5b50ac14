#include "flutter_embedding/preview/panels/log_pane.h"

#include <utility>

#include "flutter_embedding/guarded.h"
#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

constexpr unsigned k_slide_milliseconds = 250;
constexpr int k_lines_at_end = 100;  // more than most windows show
constexpr char k_hidden_tag[] = "hidden";
constexpr char k_top_mark[] = "top";
constexpr char k_end_mark[] = "end";

void hide_all_but(GtkTextBuffer* buffer, int last_lines) {
  const int hidden_lines = gtk_text_buffer_get_line_count(buffer) - last_lines;
  if (hidden_lines <= 0) return;
  GtkTextTag* hidden =
      gtk_text_tag_table_lookup(gtk_text_buffer_get_tag_table(buffer), k_hidden_tag);
  GtkTextIter end;
  gtk_text_buffer_get_iter_at_line(buffer, &end, hidden_lines);
  // Not those that are hidden already: each would be looked at again.
  GtkTextIter start = end;
  gtk_text_iter_backward_to_tag_toggle(&start, hidden);
  gtk_text_buffer_apply_tag(buffer, hidden, &start, &end);
}

void show_all(GtkTextBuffer* buffer) {
  GtkTextIter start, end;
  gtk_text_buffer_get_bounds(buffer, &start, &end);
  gtk_text_buffer_remove_tag_by_name(buffer, k_hidden_tag, &start, &end);
}

void hide_lines_out_of_sight(LogPane* pane) {
  const bool mapped = gtk_widget_get_mapped(pane->text.widget);
  if (mapped && !pane->follows_end) return;
  hide_all_but(pane->text.buffer, mapped ? k_lines_at_end : 0);
}

// What is at the top stays there. Where that is then, is known once all lines are laid out; until
// then nothing is drawn.
void show_all_in_place(LogPane* pane) {
  GtkTextView* view = pane->text.view;
  GtkTextBuffer* buffer = pane->text.buffer;
  GdkRectangle shown;
  GtkTextIter top;
  gtk_text_view_get_visible_rect(view, &shown);
  gtk_text_view_get_line_at_y(view, &top, shown.y, nullptr);
  gtk_text_buffer_move_mark_by_name(buffer, k_top_mark, &top);
  GdkWindow* window = gtk_widget_get_window(pane->text.widget);
  gdk_window_freeze_updates(window);
  show_all(buffer);
  run_when_idle(pane->life, [view, buffer, window] {
    gtk_text_view_scroll_to_mark(view, gtk_text_buffer_get_mark(buffer, k_top_mark), 0, TRUE, 0, 0);
    gdk_window_thaw_updates(window);
  });
}

void set_follows_end(LogPane* pane, bool follows_end) {
  if (std::exchange(pane->follows_end, follows_end) == follows_end) return;
  hide_lines_out_of_sight(pane);
  pane->on_change(follows_end);
}

bool is_all_in_view(const LogPane& pane) {
  return gtk_text_buffer_get_line_count(pane.text.buffer) <= k_lines_at_end &&
         gtk_adjustment_get_upper(pane.text.position) <=
             gtk_adjustment_get_page_size(pane.text.position);
}

// Whether the view shows what was the end when the person began to scroll: on a busy log the end
// goes on moving meanwhile.
bool has_reached_end(const LogPane& pane) {
  GtkTextBuffer* buffer = pane.text.buffer;
  GdkRectangle shown, end;
  GtkTextIter iter;
  gtk_text_buffer_get_iter_at_mark(buffer, &iter, gtk_text_buffer_get_mark(buffer, k_end_mark));
  gtk_text_view_get_iter_location(pane.text.view, &iter, &end);
  gtk_text_view_get_visible_rect(pane.text.view, &shown);
  return end.y + end.height <= shown.y + shown.height;
}

void look_at_move(LogPane* pane) {
  if (pane->slides_down && has_reached_end(*pane)) set_follows_end(pane, true);
}

void scroll_up(LogPane* pane) {
  if (!pane->follows_end || is_all_in_view(*pane)) return;
  set_follows_end(pane, false);
  run_later(k_slide_milliseconds, pane->life, [pane] {
    if (!pane->follows_end) show_all_in_place(pane);
  });
}

void scroll_down(LogPane* pane) {
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(pane->text.buffer, &end);
  gtk_text_buffer_move_mark_by_name(pane->text.buffer, k_end_mark, &end);
  pane->slides_down = true;
  run_later(k_slide_milliseconds, pane->life, [pane] {
    look_at_move(pane);
    pane->slides_down = false;
  });
}

// Only what a person does counts: the position also moves when old lines go and when lines get their
// heights. The view moves after the handlers here, and slides for a while.
void person_scrolls(gpointer pane, bool up) {
  run_guarded(
      [pane = static_cast<LogPane*>(pane), up] { up ? scroll_up(pane) : scroll_down(pane); });
}

gboolean on_wheel(GtkWidget*, GdkEvent* event, gpointer pane) {
  GdkScrollDirection direction = GDK_SCROLL_DOWN;
  double right = 0, down = 0;
  gdk_event_get_scroll_direction(event, &direction);
  gdk_event_get_scroll_deltas(event, &right, &down);
  person_scrolls(pane, direction == GDK_SCROLL_UP || down < 0);
  return GDK_EVENT_PROPAGATE;
}

gboolean on_scroll_bar(GtkRange* bar, GtkScrollType, double target, gpointer pane) {
  person_scrolls(pane, target < gtk_range_get_value(bar));
  return GDK_EVENT_PROPAGATE;
}

void go_to_start(LogPane* pane) {
  set_follows_end(pane, false);
  show_all(pane->text.buffer);
  gtk_adjustment_set_value(pane->text.position, 0);
}

void on_movement_key(GtkTextView*, GtkMovementStep step, int count, gboolean, gpointer pane) {
  if (step == GTK_MOVEMENT_BUFFER_ENDS) {
    // Not left to the view's slide, which a busy log would interrupt.
    run_guarded([pane = static_cast<LogPane*>(pane), count] {
      count < 0 ? go_to_start(pane) : log_pane_go_to_end(pane);
    });
  } else if (step == GTK_MOVEMENT_DISPLAY_LINES || step == GTK_MOVEMENT_PAGES) {
    person_scrolls(pane, count < 0);
  }
}

void watch_scrolling(LogPane* pane) {
  GtkTextView* view = pane->text.view;
  GtkWidget* bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(pane->text.widget));
  gtk_widget_add_events(GTK_WIDGET(view), GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
  g_signal_connect(view, "scroll-event", G_CALLBACK(on_wheel), pane);
  g_signal_connect(view, "move-cursor", G_CALLBACK(on_movement_key), pane);
  g_signal_connect(bar, "change-value", G_CALLBACK(on_scroll_bar), pane);
  on_signal(pane->text.position, "value-changed", [pane] { look_at_move(pane); });
}

bool select(GtkTextBuffer* buffer, const char* text, bool behind_selection) {
  GtkTextIter first, start, end;
  gtk_text_buffer_get_start_iter(buffer, &first);
  gtk_text_buffer_get_selection_bounds(buffer, &start, &end);
  for (const GtkTextIter& from : {behind_selection ? end : start, first}) {
    if (!gtk_text_iter_forward_search(&from, text, GTK_TEXT_SEARCH_CASE_INSENSITIVE, &start, &end,
                                      nullptr)) {
      continue;
    }
    gtk_text_buffer_select_range(buffer, &start, &end);
    return true;
  }
  return false;
}

}  // namespace

std::unique_ptr<LogPane> log_pane_new(const char* accessible_name, const Life& life,
                                      std::function<void(bool follows_end)> on_change) {
  auto pane = std::make_unique<LogPane>();
  pane->text = text_pane_new(accessible_name);
  pane->life = life;
  pane->on_change = std::move(on_change);
  GtkTextBuffer* buffer = pane->text.buffer;
  gtk_text_buffer_create_tag(buffer, k_hidden_tag, "invisible", TRUE, nullptr);
  GtkTextIter start;
  gtk_text_buffer_get_start_iter(buffer, &start);
  for (const char* mark : {k_top_mark, k_end_mark}) {
    gtk_text_buffer_create_mark(buffer, mark, &start, TRUE);
  }
  text_pane_follow_end(pane->text, [pane = pane.get()] { return pane->follows_end; });
  watch_scrolling(pane.get());
  on_signal(pane->text.view, "map", [pane = pane.get()] {
    show_all(pane->text.buffer);
    hide_lines_out_of_sight(pane);
  });
  return pane;
}

void log_pane_append(LogPane* pane, std::string_view batch) {
  text_pane_append(pane->text, batch);
  hide_lines_out_of_sight(pane);
}

void log_pane_clear(LogPane* pane) {
  gtk_text_buffer_set_text(pane->text.buffer, "", 0);
  set_follows_end(pane, true);
}

void log_pane_go_to_end(LogPane* pane) {
  set_follows_end(pane, true);
  gtk_adjustment_set_value(pane->text.position, gtk_adjustment_get_upper(pane->text.position));
}

bool log_pane_find(LogPane* pane, const char* text, bool behind_selection) {
  if (!select(pane->text.buffer, text, behind_selection)) return false;
  set_follows_end(pane, false);
  show_all(pane->text.buffer);
  run_when_idle(pane->life, [view = pane->text.view, buffer = pane->text.buffer] {
    gtk_text_view_scroll_to_mark(view, gtk_text_buffer_get_insert(buffer), 0.1, FALSE, 0, 0);
  });
  return true;
}

}  // namespace preview
