#include "flutter_embedding/preview/pages/log_page.h"

#include <string>
#include <string_view>

#include "flutter_embedding/channels/references.h"
#include "flutter_embedding/preview/panels/log_pane.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/ui_channel.h"

namespace preview {

struct LogPage {
  std::shared_ptr<FlBinaryMessenger> messenger;
  Life life;
  GtkWidget* widget = nullptr;
  std::unique_ptr<LogPane> pane;
  GtkSearchBar* search = nullptr;
  GtkWidget* searched_text = nullptr;
  GtkWidget* empty_note = nullptr;
  GtkLabel* line_count = nullptr;
  GtkWidget* to_end = nullptr;  // visible only while the pane doesn't follow
};

namespace {

constexpr char k_channel[] = "com.corvana.channel/log_stream";
constexpr std::string_view k_clear_event = "__clear__";

void show_line_count(LogPage* page) {
  const size_t lines = page->pane->lines.size();
  std::string text = std::to_string(lines) + " 行";
  if (lines == k_max_log_lines) text += "（最新部分）";
  gtk_label_set_text(page->line_count, text.c_str());
  gtk_widget_set_visible(page->empty_note, lines == 0);
}

void clear(LogPage* page) {
  log_pane_clear(page->pane.get());
  show_line_count(page);
}

void take_event(LogPage* page, FlValue* event) {
  if (event == nullptr || fl_value_get_type(event) != FL_VALUE_TYPE_STRING) return;
  const std::string_view text = fl_value_get_string(event);
  if (text == k_clear_event) return clear(page);
  log_pane_append(page->pane.get(), text);
  show_line_count(page);
}

void focus_log(LogPage* page) { gtk_widget_grab_focus(GTK_WIDGET(page->pane->text.view)); }

GtkWidget* pane_new(LogPage* page) {
  page->pane = log_pane_new("核心日志", page->life, [page](bool follows_end) {
    // Hiding the focused button would leave the window without a focus.
    if (gtk_widget_is_focus(page->to_end)) focus_log(page);
    gtk_widget_set_visible(page->to_end, !follows_end);
  });
  page->empty_note = gtk_label_new("还没有日志，连接后在这里显示核心的输出");
  add_style_class(page->empty_note, "dim-label");
  gtk_widget_set_halign(page->empty_note, GTK_ALIGN_CENTER);
  gtk_widget_set_valign(page->empty_note, GTK_ALIGN_CENTER);
  hide_until_wanted(page->empty_note);
  GtkWidget* overlay = gtk_overlay_new();
  gtk_container_add(GTK_CONTAINER(overlay), page->pane->text.widget);
  gtk_overlay_add_overlay(GTK_OVERLAY(overlay), page->empty_note);
  gtk_overlay_set_overlay_pass_through(GTK_OVERLAY(overlay), page->empty_note, TRUE);
  return overlay;
}

void look_for(LogPage* page, GtkEntry* entry, bool behind_selection) {
  const char* text = gtk_entry_get_text(entry);
  const bool missing = *text != '\0' && !log_pane_find(page->pane.get(), text, behind_selection);
  set_style_class(GTK_WIDGET(entry), GTK_STYLE_CLASS_ERROR, missing);
}

// Hidden until its search mode is set; Escape hides it again.
GtkWidget* search_bar_new(LogPage* page) {
  GtkWidget* entry = page->searched_text = gtk_search_entry_new();
  atk_object_set_name(gtk_widget_get_accessible(entry), "查找日志");
  on_signal(entry, "search-changed", [=] { look_for(page, GTK_ENTRY(entry), false); });
  for (const char* next : {"activate", "next-match"}) {
    on_signal(entry, next, [=] { look_for(page, GTK_ENTRY(entry), true); });
  }
  on_signal(entry, "stop-search", [page] { focus_log(page); });
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
  page->to_end = button_new("转到末尾", [page] { log_pane_go_to_end(page->pane.get()); });
  hide_until_wanted(page->to_end);
  GtkWidget* copy = copy_button_new("复制选中的日志，未选中时复制全部",
                                    [page] { return log_pane_selected_or_all(*page->pane); });
  GtkWidget* tools = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_spacing);
  gtk_widget_set_margin_top(tools, k_spacing);
  for (GtkWidget* tool : {count, page->to_end, copy, button_new("清空", [page] { clear(page); })}) {
    gtk_container_add(GTK_CONTAINER(tools), tool);
  }
  return tools;
}

}  // namespace

std::shared_ptr<LogPage> log_page_new(FlBinaryMessenger* messenger, const Life& life) {
  auto page = std::make_shared<LogPage>();
  page->messenger = share_object(messenger);
  page->life = life;
  page->widget = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  set_all_margins(page->widget, k_margin);
  GtkWidget* pane = pane_new(page.get());
  for (GtkWidget* part : {search_bar_new(page.get()), pane, tools_new(page.get())}) {
    gtk_container_add(GTK_CONTAINER(page->widget), part);
  }
  show_line_count(page.get());
  return page;
}

GtkWidget* log_page_widget(const LogPage& page) { return page.widget; }

void log_page_search(LogPage* page) {
  gtk_search_bar_set_search_mode(page->search, TRUE);
  gtk_widget_grab_focus(page->searched_text);
}

void log_page_listen(LogPage* page) {
  ui_listen(page->messenger.get(), k_channel, [page, life = page->life](FlValue* event) {
    if (!life.expired()) take_event(page, event);
  });
}

}  // namespace preview
