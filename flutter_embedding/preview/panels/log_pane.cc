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
  if (!pane->follows_end) return;
  const bool mapped = gtk_widget_get_mapped(pane->text.widget);
  hide_all_but(pane->text.buffer, mapped ? k_lines_at_end : 0);
}

GtkTextIter iter_at(const LogPane& pane, const char* mark) {
  GtkTextIter iter;
  gtk_text_buffer_get_iter_at_mark(pane.text.buffer, &iter,
                                   gtk_text_buffer_get_mark(pane.text.buffer, mark));
  return iter;
}

void go_to_top_mark(LogPane* pane) {
  const GtkTextIter top = iter_at(*pane, k_top_mark);
  GdkRectangle place;
  gtk_text_view_get_iter_location(pane->text.view, &top, &place);
  gtk_adjustment_set_value(pane->text.position,
                           place.y + gtk_text_view_get_top_margin(pane->text.view));
}

// Where `top` is, is known once all lines are laid out. Until then nothing is drawn, and a person's
// scrolling, which would begin anywhere, is ignored.
void show_all_from(LogPane* pane, const GtkTextIter& top) {
  gtk_text_buffer_move_mark_by_name(pane->text.buffer, k_top_mark, &top);
  if (std::exchange(pane->is_laid_out_anew, true)) return;
  GdkWindow* window = gtk_widget_get_window(pane->text.widget);
  gdk_window_freeze_updates(window);
  show_all(pane->text.buffer);
  run_when_idle(pane->life, [pane, window] {
    pane->is_laid_out_anew = false;
    // Long lines may need a bar at the bottom, which makes the view smaller.
    gtk_container_check_resize(GTK_CONTAINER(gtk_widget_get_toplevel(pane->text.widget)));
    if (!pane->follows_end) go_to_top_mark(pane);
    gdk_window_thaw_updates(window);
  });
}

void show_all_in_place(LogPane* pane) {
  GdkRectangle shown;
  GtkTextIter top;
  gtk_text_view_get_visible_rect(pane->text.view, &shown);
  gtk_text_view_get_line_at_y(pane->text.view, &top, shown.y, nullptr);
  show_all_from(pane, top);
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
  const GtkTextIter iter = iter_at(pane, k_end_mark);
  GdkRectangle shown, end;
  gtk_text_view_get_iter_location(pane.text.view, &iter, &end);
  gtk_text_view_get_visible_rect(pane.text.view, &shown);
  return end.y + end.height <= shown.y + shown.height;
}

void follow_if_at_end(LogPane* pane) {
  if (pane->slides_down > 0 && has_reached_end(*pane)) set_follows_end(pane, true);
}

void scroll_up(LogPane* pane) {
  if (!pane->follows_end || is_all_in_view(*pane)) return;
  set_follows_end(pane, false);
  run_later(k_slide_milliseconds, pane->life, [pane] {
    if (!pane->follows_end && !pane->is_laid_out_anew) show_all_in_place(pane);
  });
}

void scroll_down(LogPane* pane) {
  GtkTextIter end;
  gtk_text_buffer_get_end_iter(pane->text.buffer, &end);
  gtk_text_buffer_move_mark_by_name(pane->text.buffer, k_end_mark, &end);
  ++pane->slides_down;
  run_later(k_slide_milliseconds, pane->life, [pane] {
    follow_if_at_end(pane);
    --pane->slides_down;
  });
}

// Called for a person's scrolling only: the position also changes when old lines are dropped and
// when lines get their heights. GTK moves the view after the handlers here, and slides for a while.
// Returns true when the view must stay where it is.
bool take_scroll(gpointer data, bool up) {
  auto* pane = static_cast<LogPane*>(data);
  run_guarded([pane, up] { up ? scroll_up(pane) : scroll_down(pane); });
  return pane->is_laid_out_anew;
}

gboolean on_wheel(GtkWidget*, GdkEvent* event, gpointer pane) {
  GdkScrollDirection direction = GDK_SCROLL_DOWN;
  GdkModifierType held = {};
  double right = 0, down = 0;
  gdk_event_get_scroll_direction(event, &direction);
  gdk_event_get_scroll_deltas(event, &right, &down);
  gdk_event_get_state(event, &held);
  if ((held & GDK_SHIFT_MASK) != 0) return GDK_EVENT_PROPAGATE;  // scrolls sideways
  return take_scroll(pane, direction == GDK_SCROLL_UP || down < 0);
}

gboolean on_scroll_bar(GtkRange* bar, GtkScrollType, double target, gpointer pane) {
  return take_scroll(pane, target < gtk_range_get_value(bar));
}

void go_to_start(LogPane* pane) {
  if (is_all_in_view(*pane)) return;
  set_follows_end(pane, false);
  GtkTextIter start;
  gtk_text_buffer_get_start_iter(pane->text.buffer, &start);
  show_all_from(pane, start);
}

void on_movement_key(GtkTextView* view, GtkMovementStep step, int count, gboolean, gpointer data) {
  auto* pane = static_cast<LogPane*>(data);
  switch (step) {
    case GTK_MOVEMENT_BUFFER_ENDS:
      // Not left to the view's slide, which a busy log would interrupt.
      run_guarded([pane, count] { count < 0 ? go_to_start(pane) : log_pane_go_to_end(pane); });
      break;
    case GTK_MOVEMENT_DISPLAY_LINES:
    case GTK_MOVEMENT_PARAGRAPHS:
    case GTK_MOVEMENT_PAGES:
      if (take_scroll(pane, count < 0)) g_signal_stop_emission_by_name(view, "move-cursor");
      break;
    default:
      break;
  }
}

// The view itself would leave the hidden lines out.
void copy_selection(const LogPane& pane) {
  g_signal_stop_emission_by_name(pane.text.view, "copy-clipboard");
  if (!gtk_text_buffer_get_has_selection(pane.text.buffer)) return;
  gtk_clipboard_set_text(gtk_widget_get_clipboard(pane.text.widget, GDK_SELECTION_CLIPBOARD),
                         log_pane_selected_or_all(pane).c_str(), -1);
}

void watch_scrolling(LogPane* pane) {
  GtkTextView* view = pane->text.view;
  GtkWidget* bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(pane->text.widget));
  gtk_widget_add_events(GTK_WIDGET(view), GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
  g_signal_connect(view, "scroll-event", G_CALLBACK(on_wheel), pane);
  g_signal_connect(view, "move-cursor", G_CALLBACK(on_movement_key), pane);
  g_signal_connect(bar, "change-value", G_CALLBACK(on_scroll_bar), pane);
  on_signal(pane->text.position, "value-changed", [pane] { follow_if_at_end(pane); });
}

bool select_text(GtkTextBuffer* buffer, const char* text, bool behind_selection) {
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
  on_signal(pane->text.view, "copy-clipboard", [pane = pane.get()] { copy_selection(*pane); });
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

std::string log_pane_selected_or_all(const LogPane& pane) {
  GtkTextIter start, end;
  if (!gtk_text_buffer_get_selection_bounds(pane.text.buffer, &start, &end)) {
    gtk_text_buffer_get_bounds(pane.text.buffer, &start, &end);
  }
  g_autofree char* text = gtk_text_buffer_get_text(pane.text.buffer, &start, &end, TRUE);
  return text;
}

void log_pane_go_to_end(LogPane* pane) {
  set_follows_end(pane, true);
  gtk_adjustment_set_value(pane->text.position, gtk_adjustment_get_upper(pane->text.position));
}

bool log_pane_find(LogPane* pane, const char* text, bool behind_selection) {
  if (!select_text(pane->text.buffer, text, behind_selection)) return false;
  set_follows_end(pane, false);
  show_all_from(pane, iter_at(*pane, "insert"));
  run_when_idle(pane->life, [view = pane->text.view, buffer = pane->text.buffer] {
    gtk_text_view_scroll_to_mark(view, gtk_text_buffer_get_insert(buffer), 0.1, FALSE, 0, 0);
  });
  return true;
}

}  // namespace preview
