#include "flutter_embedding/preview/pages/log_page.h"

#include <string>
#include <string_view>
#include <utility>

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
  GtkSearchBar* search = nullptr;
  GtkWidget* empty_note = nullptr;
  GtkLabel* line_count = nullptr;
  GtkWidget* to_end = nullptr;  // there only while the view doesn't follow
  bool follows_end = true;
  bool person_scrolls = false;
};

namespace {

constexpr char k_channel[] = "com.corvana.channel/log_stream";
constexpr unsigned k_slide_milliseconds = 250;
constexpr char k_top_mark[] = "top";
constexpr int k_lines_at_end = 100;  // more than most windows show
constexpr std::string_view k_clear_event = "__clear__";

void show_line_count(LogPage* page) {
  const bool empty = gtk_text_buffer_get_char_count(page->pane.buffer) == 0;
  const int lines = empty ? 0 : gtk_text_buffer_get_line_count(page->pane.buffer);
  std::string text = std::to_string(lines) + " 行";
  if (lines == k_max_log_lines) text += "（最新部分）";
  gtk_label_set_text(page->line_count, text.c_str());
  gtk_widget_set_visible(page->empty_note, empty);
}

void hide_lines_out_of_sight(LogPage* page) {
  const bool mapped = gtk_widget_get_mapped(page->pane.widget);
  if (mapped && !page->follows_end) return;
  log_view_hide_all_but(page->pane.buffer, mapped ? k_lines_at_end : 0);
}

// What is at the top stays there. Where that is then, is known once all lines are laid out; until
// then nothing is drawn.
void show_all_lines(LogPage* page) {
  GdkRectangle shown;
  GtkTextIter top;
  gtk_text_view_get_visible_rect(page->pane.view, &shown);
  gtk_text_view_get_line_at_y(page->pane.view, &top, shown.y, nullptr);
  gtk_text_buffer_move_mark_by_name(page->pane.buffer, k_top_mark, &top);
  GdkWindow* window = gtk_widget_get_window(page->pane.widget);
  gdk_window_freeze_updates(window);
  log_view_show_all(page->pane.buffer);
  run_when_idle(page->life, [page, window] {
    gtk_text_view_scroll_to_mark(
        page->pane.view, gtk_text_buffer_get_mark(page->pane.buffer, k_top_mark), 0, TRUE, 0, 0);
    gdk_window_thaw_updates(window);
  });
}

void set_follows_end(LogPage* page, bool follows_end) {
  if (std::exchange(page->follows_end, follows_end) == follows_end) return;
  follows_end ? hide_lines_out_of_sight(page) : show_all_lines(page);
  gtk_widget_set_visible(page->to_end, !follows_end);
}

void clear(LogPage* page) {
  gtk_text_buffer_set_text(page->pane.buffer, "", 0);
  set_follows_end(page, true);
  show_line_count(page);
}

void take_event(LogPage* page, FlValue* event) {
  if (event == nullptr || fl_value_get_type(event) != FL_VALUE_TYPE_STRING) return;
  const std::string_view text = fl_value_get_string(event);
  if (text == k_clear_event) return clear(page);
  log_view_append(page->pane.buffer, text);
  hide_lines_out_of_sight(page);
  show_line_count(page);
}

// Only what the person does decides it: the position also moves when old lines go and when lines
// get their heights.
void decide_whether_to_follow(LogPage* page) {
  const double bottom = gtk_adjustment_get_upper(page->pane.position) -
                        gtk_adjustment_get_page_size(page->pane.position);
  page->person_scrolls = false;
  if (bottom <= 0) log_view_show_all(page->pane.buffer);
  set_follows_end(page, gtk_adjustment_get_value(page->pane.position) >= bottom - 1);
}

// The view moves after the handlers here, and slides for a while; lines that arrive meanwhile must
// not take it back.
void person_scrolls(LogPage* page) {
  page->person_scrolls = true;
  run_later(k_slide_milliseconds, page->life, [page] { decide_whether_to_follow(page); });
}

gboolean on_scroll_event(GtkWidget*, GdkEvent*, gpointer page) {
  run_guarded([page] { person_scrolls(static_cast<LogPage*>(page)); });
  return GDK_EVENT_PROPAGATE;
}

gboolean on_scroll_bar(GtkRange*, GtkScrollType, double, gpointer page) {
  run_guarded([page] { person_scrolls(static_cast<LogPage*>(page)); });
  return GDK_EVENT_PROPAGATE;
}

void watch_scrolling(LogPage* page) {
  GtkWidget* scrolled = page->pane.widget;
  gtk_widget_add_events(GTK_WIDGET(page->pane.view), GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
  g_signal_connect(page->pane.view, "scroll-event", G_CALLBACK(on_scroll_event), page);
  on_signal(page->pane.view, "move-cursor", [page] { person_scrolls(page); });
  GtkWidget* bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(scrolled));
  g_signal_connect(bar, "change-value", G_CALLBACK(on_scroll_bar), page);
}

std::string selected_or_all(GtkTextBuffer* buffer) {
  GtkTextIter start;
  GtkTextIter end;
  if (!gtk_text_buffer_get_selection_bounds(buffer, &start, &end)) {
    gtk_text_buffer_get_bounds(buffer, &start, &end);
  }
  g_autofree char* text = gtk_text_buffer_get_text(buffer, &start, &end, TRUE);
  return text;
}

GtkWidget* pane_new(LogPage* page) {
  page->pane = text_pane_new("核心日志");
  text_pane_follow_end(page->pane, [page] { return page->follows_end && !page->person_scrolls; });
  watch_scrolling(page);
  GtkTextIter start;
  gtk_text_buffer_get_start_iter(page->pane.buffer, &start);
  gtk_text_buffer_create_mark(page->pane.buffer, k_top_mark, &start, TRUE);
  on_signal(page->pane.view, "map", [page] {
    log_view_show_all(page->pane.buffer);
    hide_lines_out_of_sight(page);
  });

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

// From the selection on, or behind it, and then from the beginning. Selects what is found.
bool find(GtkTextBuffer* buffer, const char* text, bool behind) {
  GtkTextIter first, start, end;
  gtk_text_buffer_get_start_iter(buffer, &first);
  gtk_text_buffer_get_selection_bounds(buffer, &start, &end);
  for (const GtkTextIter& from : {behind ? end : start, first}) {
    if (!gtk_text_iter_forward_search(&from, text, GTK_TEXT_SEARCH_CASE_INSENSITIVE, &start, &end,
                                      nullptr)) {
      continue;
    }
    gtk_text_buffer_select_range(buffer, &start, &end);
    return true;
  }
  return false;
}

void look_for(LogPage* page, GtkEntry* entry, bool behind) {
  const char* text = gtk_entry_get_text(entry);
  const bool found = *text != '\0' && find(page->pane.buffer, text, behind);
  set_style_class(GTK_WIDGET(entry), GTK_STYLE_CLASS_ERROR, *text != '\0' && !found);
  if (!found) return;
  set_follows_end(page, false);
  run_when_idle(page->life, [pane = page->pane] {
    gtk_text_view_scroll_to_mark(pane.view, gtk_text_buffer_get_insert(pane.buffer), 0.1, FALSE, 0,
                                 0);
  });
}

// Hidden until its search mode is set; Escape hides it again.
GtkWidget* search_bar_new(LogPage* page) {
  GtkWidget* entry = gtk_search_entry_new();
  atk_object_set_name(gtk_widget_get_accessible(entry), "查找日志");
  on_signal(entry, "search-changed", [=] { look_for(page, GTK_ENTRY(entry), false); });
  on_signal(entry, "activate", [=] { look_for(page, GTK_ENTRY(entry), true); });
  on_signal(entry, "next-match", [=] { look_for(page, GTK_ENTRY(entry), true); });
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
                                    [page] { return selected_or_all(page->pane.buffer); }));
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
