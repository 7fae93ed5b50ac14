#include "flutter_embedding/preview/pages/log_page.h"

#include <string>
#include <string_view>

#include "flutter_embedding/channels/references.h"
#include "flutter_embedding/guarded.h"
#include "flutter_embedding/preview/panels/text_pane.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/ui_channel.h"

namespace preview {

struct LogPage {
  std::shared_ptr<FlBinaryMessenger> messenger;
  Life life;
  GtkWidget* widget = nullptr;
  TextPane pane = {};
  // The view has it only while it is on the screen: lines that nobody sees need no layout.
  std::shared_ptr<GtkTextBuffer> buffer;
  GtkSearchBar* search = nullptr;
  GtkWidget* empty_note = nullptr;
  GtkLabel* line_count = nullptr;
  GtkWidget* to_end = nullptr;  // there only while the view doesn't follow
  bool follows_end = true;
};

namespace {

constexpr char k_channel[] = "com.corvana.channel/log_stream";
constexpr std::string_view k_clear_event = "__clear__";

void show_line_count(LogPage* page) {
  const bool empty = gtk_text_buffer_get_char_count(page->buffer.get()) == 0;
  const int lines = empty ? 0 : gtk_text_buffer_get_line_count(page->buffer.get());
  std::string text = std::to_string(lines) + " 行";
  if (lines == k_max_log_lines) text += "（最新部分）";
  gtk_label_set_text(page->line_count, text.c_str());
  gtk_widget_set_visible(page->empty_note, empty);
}

void set_follows_end(LogPage* page, bool follows_end) {
  page->follows_end = follows_end;
  gtk_widget_set_visible(page->to_end, !follows_end);
}

void clear(LogPage* page) {
  gtk_text_buffer_set_text(page->buffer.get(), "", 0);
  set_follows_end(page, true);
  show_line_count(page);
}

void take_event(LogPage* page, FlValue* event) {
  if (event == nullptr || fl_value_get_type(event) != FL_VALUE_TYPE_STRING) return;
  const std::string_view text = fl_value_get_string(event);
  if (text == k_clear_event) return clear(page);
  log_view_append(page->buffer.get(), text);
  show_line_count(page);
}

// Only what the person does decides it: the position also moves when old lines go and when lines
// get their heights.
void decide_whether_to_follow(LogPage* page) {
  const double bottom = gtk_adjustment_get_upper(page->pane.position) -
                        gtk_adjustment_get_page_size(page->pane.position);
  set_follows_end(page, gtk_adjustment_get_value(page->pane.position) >= bottom - 1);
}

// What the person did moves the view only after the handlers here, but before the next lines
// arrive.
void person_scrolls(LogPage* page) {
  run_later(0, page->life, [page] { decide_whether_to_follow(page); });
}

gboolean on_scroll_event(GtkWidget*, GdkEvent*, gpointer page) {
  run_guarded([page] { person_scrolls(static_cast<LogPage*>(page)); });
  return GDK_EVENT_PROPAGATE;
}

gboolean on_scroll_bar(GtkRange*, GtkScrollType, double, gpointer page) {
  run_guarded([page] { person_scrolls(static_cast<LogPage*>(page)); });
  return GDK_EVENT_PROPAGATE;
}

void on_edge_reached(GtkScrolledWindow*, GtkPositionType edge, gpointer page) {
  if (edge == GTK_POS_BOTTOM) set_follows_end(static_cast<LogPage*>(page), true);
}

void watch_scrolling(LogPage* page) {
  GtkWidget* scrolled = page->pane.widget;
  gtk_widget_add_events(GTK_WIDGET(page->pane.view), GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
  g_signal_connect(page->pane.view, "scroll-event", G_CALLBACK(on_scroll_event), page);
  on_signal(page->pane.view, "move-cursor", [page] { person_scrolls(page); });
  GtkWidget* bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(scrolled));
  g_signal_connect(bar, "change-value", G_CALLBACK(on_scroll_bar), page);
  g_signal_connect(scrolled, "edge-reached", G_CALLBACK(on_edge_reached), page);
}

std::string selected_or_all(GtkTextBuffer* buffer) {
  GtkTextIter start;
  GtkTextIter end;
  if (!gtk_text_buffer_get_selection_bounds(buffer, &start, &end)) {
    gtk_text_buffer_get_bounds(buffer, &start, &end);
  }
  g_autofree char* text = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
  return text;
}

GtkWidget* pane_new(LogPage* page) {
  page->pane = text_pane_new("核心日志");
  page->buffer = share_object(page->pane.buffer);
  gtk_text_view_set_buffer(page->pane.view, nullptr);
  text_pane_follow_end(page->pane, [page] { return page->follows_end; });
  watch_scrolling(page);
  on_signal(page->pane.view, "map",
            [page] { gtk_text_view_set_buffer(page->pane.view, page->buffer.get()); });
  on_signal(page->pane.view, "unmap",
            [page] { gtk_text_view_set_buffer(page->pane.view, nullptr); });

  page->empty_note = gtk_label_new("还没有日志，连接后在这里显示核心的输出");
  add_style_class(page->empty_note, "dim-label");
  gtk_widget_set_halign(page->empty_note, GTK_ALIGN_CENTER);
  gtk_widget_set_valign(page->empty_note, GTK_ALIGN_CENTER);
  hide_until_wanted(page->empty_note);
  GtkWidget* overlay = gtk_overlay_new();
  gtk_container_add(GTK_CONTAINER(overlay), page->pane.widget);
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay), page->empty_note);
  gtk_overlay_set_overlay_pass_through(GTK_OVERLAY(overlay), page->empty_note, TRUE);
  return overlay;
}

enum class Direction { here, next, previous };

// From the selection on, and then from the other end of the text.
bool find(GtkTextView* view, const char* text, Direction direction) {
  const bool back = direction == Direction::previous;
  const auto search = back ? gtk_text_iter_backward_search : gtk_text_iter_forward_search;
  GtkTextBuffer* buffer = gtk_text_view_get_buffer(view);
  GtkTextIter first, last, start, end;
  gtk_text_buffer_get_bounds(buffer, &first, &last);
  gtk_text_buffer_get_selection_bounds(buffer, &start, &end);
  for (const GtkTextIter& from :
       {direction == Direction::next ? end : start, back ? last : first}) {
    if (!search(&from, text, GTK_TEXT_SEARCH_CASE_INSENSITIVE, &start, &end, nullptr)) continue;
    gtk_text_buffer_select_range(buffer, &start, &end);
    gtk_text_view_scroll_to_mark(view, gtk_text_buffer_get_insert(buffer), 0.1, FALSE, 0, 0);
    return true;
  }
  return false;
}

void look_for(LogPage* page, GtkEntry* entry, Direction direction) {
  const char* text = gtk_entry_get_text(entry);
  const bool found = *text != '\0' && find(page->pane.view, text, direction);
  set_style_class(GTK_WIDGET(entry), GTK_STYLE_CLASS_ERROR, *text != '\0' && !found);
  if (found) set_follows_end(page, false);
}

// Hidden until its search mode is set; Escape hides it again.
GtkWidget* search_bar_new(LogPage* page) {
  GtkWidget* entry = gtk_search_entry_new();
  atk_object_set_name(gtk_widget_get_accessible(entry), "查找日志");
  constexpr std::pair<const char*, Direction> k_signals[] = {
      {"search-changed", Direction::here},
      {"activate", Direction::next},
      {"next-match", Direction::next},
      {"previous-match", Direction::previous}};
  for (const auto& [signal, direction] : k_signals) {
    on_signal(entry, signal, [page, entry, direction = direction] {
      look_for(page, GTK_ENTRY(entry), direction);
    });
  }
  GtkWidget* bar = gtk_search_bar_new();
  page->search = GTK_SEARCH_BAR(bar);
  gtk_container_add(GTK_CONTAINER(bar), entry);
  gtk_search_bar_connect_entry(page->search, GTK_ENTRY(entry));
  return bar;
}

GtkWidget* tools_new(LogPage* page) {
  GtkWidget* count = dim_label_new("");
  page->line_count = GTK_LABEL(count);
  gtk_widget_set_hexpand(count, TRUE);
  page->to_end = button_new("转到末尾", [page] {
    set_follows_end(page, true);
    gtk_adjustment_set_value(page->pane.position, gtk_adjustment_get_upper(page->pane.position));
  });
  hide_until_wanted(page->to_end);
  GtkWidget* tools = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_spacing);
  gtk_container_add(GTK_CONTAINER(tools), count);
  gtk_container_add(GTK_CONTAINER(tools), page->to_end);
  gtk_container_add(GTK_CONTAINER(tools),
                    copy_button_new("复制选中的日志，未选中时复制全部",
                                    [page] { return selected_or_all(page->buffer.get()); }));
  gtk_container_add(GTK_CONTAINER(tools), button_new("清空", [page] { clear(page); }));
  return tools;
}

}  // namespace

std::shared_ptr<LogPage> log_page_new(FlBinaryMessenger* messenger, const Life& life) {
  auto page = std::make_shared<LogPage>();
  page->messenger = share_object(messenger);
  page->life = life;
  page->widget = gtk_box_new(GTK_ORIENTATION_VERTICAL, k_spacing);
  set_all_margins(page->widget, k_margin);
  GtkWidget* pane = pane_new(page.get());
  gtk_container_add(GTK_CONTAINER(page->widget), search_bar_new(page.get()));
  gtk_container_add(GTK_CONTAINER(page->widget), pane);
  gtk_container_add(GTK_CONTAINER(page->widget), tools_new(page.get()));
  show_line_count(page.get());
  return page;
}

GtkWidget* log_page_widget(const LogPage& page) { return page.widget; }

void log_page_search(LogPage* page) { gtk_search_bar_set_search_mode(page->search, TRUE); }

void log_page_listen(LogPage* page) {
  ui_listen(page->messenger.get(), k_channel, [page, life = page->life](FlValue* event) {
    if (!life.expired()) take_event(page, event);
  });
}

}  // namespace preview
