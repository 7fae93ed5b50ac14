#include "flutter_embedding/preview/panels/log_pane.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "flutter_embedding/guarded.h"
#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

using State = LogPane::State;

constexpr unsigned k_still_milliseconds = 300;  // GTK's animated scrolls take less
constexpr size_t k_lines_at_end = 300;          // more than the tallest screens show
constexpr double k_at_start = G_MAXDOUBLE;      // a distance from the end

std::string joined(const LogPane& pane, size_t first, size_t last) {
  std::string text;
  for (size_t i = first; i < last; ++i) text.append(i == first ? "" : "\n").append(pane.lines[i]);
  return text;
}

void check_position(LogPane* pane);

// Waits for the layout: until then a pane that follows may not be at its end.
void check_position_when_idle(LogPane* pane) {
  if (std::exchange(pane->is_check_pending, true)) return;
  run_when_idle(pane->life, [pane] { check_position(pane); });
}

size_t shown_line_count(const LogPane& pane) {
  GtkTextBuffer* buffer = pane.text.buffer;
  if (gtk_text_buffer_get_char_count(buffer) == 0) return 0;
  return static_cast<size_t>(gtk_text_buffer_get_line_count(buffer));
}

void append_last(LogPane* pane, size_t count, size_t max_shown) {
  const size_t end = pane->lines.size();
  const size_t shown = std::min({count, max_shown, end});
  if (shown > 0) text_pane_append(pane->text, joined(*pane, end - shown, end), max_shown);
}

// GTK may leave the view anywhere after this. The check at the next idle time puts it right.
void add_at_end(LogPane* pane, size_t count) {
  append_last(pane, count, k_lines_at_end);
  pane->is_text_new = true;
  check_position_when_idle(pane);
}

void show_end(LogPane* pane) {
  gtk_text_buffer_set_text(pane->text.buffer, "", 0);
  add_at_end(pane, k_lines_at_end);
}

double distance_from_end(const LogPane& pane) {
  GtkAdjustment* position = pane.text.position;
  return gtk_adjustment_get_upper(position) - gtk_adjustment_get_page_size(position) -
         gtk_adjustment_get_value(position);
}

void hold_position(const LogPane& pane) {
  if (!pane.held_from_end) return;
  const double moved = distance_from_end(pane) - *pane.held_from_end;
  gtk_adjustment_set_value(pane.text.position,
                           gtk_adjustment_get_value(pane.text.position) + moved);
}

// The view is held in its place until all lines have their heights.
void show_earlier_lines(LogPane* pane, double from_end) {
  const size_t known = shown_line_count(*pane) + pane->later_lines;
  if (pane->held_from_end || pane->lines.size() > known) pane->held_from_end = from_end;
  if (pane->lines.size() <= known) return;
  text_pane_prepend(pane->text, joined(*pane, 0, pane->lines.size() - known));
  run_when_idle(pane->life, [pane] {
    if (pane->state == State::follows) return;
    hold_position(*pane);
    pane->held_from_end.reset();
  });
}

void follow(LogPane* pane) {
  pane->state = State::follows;
  pane->held_from_end = 0;
  pane->later_lines = 0;
  show_end(pane);
  pane->on_change(true);
}

void stop_following(LogPane* pane) {
  if (pane->state != State::follows) return;
  pane->state = State::stopped;
  pane->held_from_end.reset();
  // A pane that isn't mapped takes no lines.
  if (!gtk_widget_get_mapped(pane->text.widget)) show_end(pane);
  pane->on_change(false);
}

bool is_button_held(GtkWidget* widget) {
  GdkSeat* seat = gdk_display_get_default_seat(gtk_widget_get_display(widget));
  GdkModifierType held = {};
  gdk_window_get_device_position(gtk_widget_get_window(widget), gdk_seat_get_pointer(seat), nullptr,
                                 nullptr, &held);
  return (held & (GDK_BUTTON1_MASK | GDK_BUTTON2_MASK)) != 0;
}

// Waits for the end of an animated scroll or a drag of the scroll bar: their target would be wrong
// once there are lines above.
void show_earlier_lines_when_still(LogPane* pane) {
  run_later(k_still_milliseconds, pane->life, [pane, moves = ++pane->moves] {
    if (moves != pane->moves || pane->state == State::follows) return;
    if (is_button_held(pane->text.widget)) return show_earlier_lines_when_still(pane);
    show_earlier_lines(pane, distance_from_end(*pane));
  });
}

void check_position(LogPane* pane) {
  pane->is_check_pending = false;
  if (std::exchange(pane->is_text_new, false) && pane->state == State::follows) {
    return hold_position(*pane);
  }
  if (distance_from_end(*pane) >= 1) {
    stop_following(pane);
    pane->state = State::scrolled_away;
    show_earlier_lines_when_still(pane);
  } else if (pane->state == State::scrolled_away &&
             !gtk_text_buffer_get_has_selection(pane->text.buffer)) {
    follow(pane);
  }
}

void show_all_stopped(LogPane* pane, double from_end) {
  stop_following(pane);
  show_earlier_lines(pane, from_end);
}

// Ctrl+Home and Ctrl+End go to the ends of the log, not only of what is shown.
void on_movement_key(GtkTextView*, GtkMovementStep step, int count, gboolean, gpointer data) {
  auto* pane = static_cast<LogPane*>(data);
  GtkAdjustment* position = pane->text.position;
  if (step != GTK_MOVEMENT_BUFFER_ENDS) return;
  if (count > 0) return run_guarded([pane] { follow(pane); });
  // Where all is in view, there is nothing to scroll.
  if (gtk_adjustment_get_upper(position) <= gtk_adjustment_get_page_size(position)) return;
  run_guarded([pane] { show_all_stopped(pane, k_at_start); });
}

// Selecting all means the whole log.
void take_selection(LogPane* pane) {
  if (!gtk_text_buffer_get_has_selection(pane->text.buffer)) {
    if (pane->state != State::follows) pane->state = State::scrolled_away;
    return check_position_when_idle(pane);
  }
  if (pane->state != State::follows) return;
  GtkTextIter start, end;
  gtk_text_buffer_get_selection_bounds(pane->text.buffer, &start, &end);
  const bool is_all = gtk_text_iter_is_start(&start) && gtk_text_iter_is_end(&end);
  stop_following(pane);
  if (!is_all) return;
  show_earlier_lines(pane, 0);
  gtk_text_buffer_get_bounds(pane->text.buffer, &start, &end);
  gtk_text_buffer_select_range(pane->text.buffer, &start, &end);
}

void watch_user(LogPane* pane) {
  on_signal(pane->text.position, "changed", [pane] { hold_position(*pane); });
  on_signal(pane->text.position, "value-changed", [pane] { check_position_when_idle(pane); });
  on_signal(pane->text.buffer, "notify::has-selection", [pane] { take_selection(pane); });
  g_signal_connect(pane->text.view, "move-cursor", G_CALLBACK(on_movement_key), pane);
}

size_t store(LogPane* pane, std::string_view batch) {
  size_t count = 0;
  for (size_t line_feed = 0; line_feed != batch.npos; ++count) {
    line_feed = batch.find('\n');
    pane->lines.push_back(shown_line(batch.substr(0, line_feed)));
    if (line_feed != batch.npos) batch.remove_prefix(line_feed + 1);
    if (pane->lines.size() > k_max_log_lines) pane->lines.pop_front();
  }
  return count;
}

bool contains(const LogPane& pane, const char* text) {
  g_autofree char* wanted = g_utf8_casefold(text, -1);
  g_autofree char* all = g_utf8_casefold(joined(pane, 0, pane.lines.size()).c_str(), -1);
  return strstr(all, wanted) != nullptr;
}

bool select_text(GtkTextBuffer* buffer, const char* text, int from_offset) {
  for (const int offset : {from_offset, 0}) {
    GtkTextIter from, start, end;
    gtk_text_buffer_get_iter_at_offset(buffer, &from, offset);
    if (gtk_text_iter_forward_search(&from, text, GTK_TEXT_SEARCH_CASE_INSENSITIVE, &start, &end,
                                     nullptr)) {
      gtk_text_buffer_select_range(buffer, &start, &end);
      return true;
    }
  }
  return false;
}

void scroll_to_selection(const LogPane& pane) {
  // Long lines may need a horizontal scroll bar, which makes the view smaller.
  gtk_container_check_resize(GTK_CONTAINER(gtk_widget_get_toplevel(pane.text.widget)));
  gtk_text_view_scroll_to_mark(pane.text.view, gtk_text_buffer_get_insert(pane.text.buffer), 0.1,
                               FALSE, 0, 0);
}

}  // namespace

std::unique_ptr<LogPane> log_pane_new(const char* accessible_name, const Life& life,
                                      std::function<void(bool follows_end)> on_change) {
  auto owned = std::make_unique<LogPane>();
  LogPane* pane = owned.get();
  pane->text = text_pane_new(accessible_name);
  pane->life = life;
  pane->on_change = std::move(on_change);
  watch_user(pane);
  on_signal(pane->text.view, "map", [pane] {
    if (pane->state == State::follows) show_end(pane);
  });
  return owned;
}

void log_pane_append(LogPane* pane, std::string_view batch) {
  const size_t count = store(pane, batch);
  if (pane->state != State::follows) {
    pane->later_lines = std::min(pane->later_lines + count, pane->lines.size());
  } else if (gtk_widget_get_mapped(pane->text.widget)) {
    add_at_end(pane, count);
  }
}

void log_pane_clear(LogPane* pane) {
  pane->lines.clear();
  follow(pane);
}

std::string log_pane_selected_or_all(const LogPane& pane) {
  GtkTextIter start, end;
  if (!gtk_text_buffer_get_selection_bounds(pane.text.buffer, &start, &end)) {
    return joined(pane, 0, pane.lines.size());
  }
  g_autofree char* text = gtk_text_buffer_get_text(pane.text.buffer, &start, &end, TRUE);
  return text;
}

void log_pane_go_to_end(LogPane* pane) { follow(pane); }

bool log_pane_find(LogPane* pane, const char* text, bool behind_selection) {
  if (!contains(*pane, text)) return false;
  show_all_stopped(pane, distance_from_end(*pane));
  GtkTextIter start, end;
  gtk_text_buffer_get_selection_bounds(pane->text.buffer, &start, &end);
  // Taken before the append, with which a selection at the end would grow.
  const int from_offset = gtk_text_iter_get_offset(behind_selection ? &end : &start);
  append_last(pane, std::exchange(pane->later_lines, 0), k_max_log_lines);
  if (!select_text(pane->text.buffer, text, from_offset)) return false;
  run_when_idle(pane->life, [pane] { scroll_to_selection(*pane); });
  return true;
}

}  // namespace preview
