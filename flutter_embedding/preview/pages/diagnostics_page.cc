#include "flutter_embedding/preview/pages/diagnostics_page.h"

#include <string>
#include <vector>

#include "flutter_embedding/channels/references.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/preview/runner/service_client.h"
#include "flutter_embedding/ui_channel.h"

namespace preview {

struct DiagnosticsRow {
  const char* label;
  std::string value;  // never empty, valid UTF-8
  const char* style_class;
};

struct DiagnosticsPage {
  std::shared_ptr<FlBinaryMessenger> messenger;
  Life life;
  GtkWidget* widget = nullptr;
  GtkStack* content = nullptr;  // "loading", "table" or "failed"
  GtkWidget* table = nullptr;
  GtkWidget* copy = nullptr;
  std::vector<DiagnosticsRow> rows;
  enum class State { unasked, loading, answered } state = State::unasked;
};

namespace {

using State = DiagnosticsPage::State;

enum class Kind { text, flag, needed };  // a needed flag that is false is a problem

struct Entry {
  const char* key;
  const char* label;
  Kind kind;
  const char* when_empty;
};

constexpr Entry k_entries[] = {
    {"desktop", "桌面环境", Kind::text, "未知"},
    {"sessionType", "会话类型", Kind::text, "未设置"},
    {"hasLibproxy", "libproxy 库", Kind::flag, "未知"},
    {"hasTunDevice", "TUN 设备", Kind::flag, "未知"},
    {"hasZantSystem", "系统路径中有核心", Kind::flag, "未知"},
    {"helperActive", "辅助服务已启动", Kind::flag, "未知"},
    {"hasGsettings", "gsettings 工具", Kind::flag, "未知"},
    {"hasKwriteconfig", "kwriteconfig 工具", Kind::flag, "未知"},
    {"appDir", "程序目录", Kind::text, "未知"},
    {"activeCore", "当前核心", Kind::text, "未知"},
    {"corePath", "核心路径", Kind::text, "未找到"},
    {"coreExists", "核心可用", Kind::needed, "未知"},
    {"zantVersion", "核心版本", Kind::text, "未找到核心"},
    {"runtimeLogPath", "运行日志", Kind::text, "未知"},
};

constexpr char k_plain[] = "preview-value";
constexpr char k_good[] = "preview-good";
constexpr char k_bad[] = "preview-bad";
constexpr char k_absent[] = "dim-label";

DiagnosticsRow flag_row(const Entry& entry, FlValue* report) {
  const auto flag = bool_at(report, entry.key);
  if (!flag) return {entry.label, entry.when_empty, k_absent};
  if (*flag) return {entry.label, "✓ 是", k_good};
  return {entry.label, "✗ 否", entry.kind == Kind::needed ? k_bad : k_absent};
}

DiagnosticsRow text_row(const Entry& entry, FlValue* report) {
  const std::string text = string_at(report, entry.key).value_or("");
  if (text.empty()) return {entry.label, entry.when_empty, k_absent};
  return {entry.label, text, k_plain};
}

// For the clipboard.
std::string text_of(const std::vector<DiagnosticsRow>& rows) {
  std::string text;
  for (const DiagnosticsRow& row : rows) text += std::string(row.label) + "\t" + row.value + "\n";
  return text;
}

// The host's answer blocks the main thread for a while, so the page's fade-in must have ended.
constexpr unsigned k_paint_milliseconds = 300;

std::vector<GtkWidget*> row_new(const DiagnosticsRow& row) {
  GtkWidget* value = value_label_new(row.value.c_str());
  GtkWidget* caption = caption_new(row.label, value);
  // Chinese glyphs are taller than Latin ones; without this, the two texts would differ in height.
  gtk_widget_set_valign(caption, GTK_ALIGN_BASELINE);
  gtk_widget_set_valign(value, GTK_ALIGN_BASELINE);
  for (const char* style_class : {k_plain, row.style_class}) add_style_class(value, style_class);
  return {caption, value};
}

void remove_from_table(GtkWidget* child, gpointer) { gtk_widget_destroy(child); }

void show_rows(DiagnosticsPage* page) {
  gtk_container_foreach(GTK_CONTAINER(page->table), remove_from_table, nullptr);
  std::vector<std::vector<GtkWidget*>> rows;
  for (const DiagnosticsRow& row : page->rows) rows.push_back(row_new(row));
  fill_grid(page->table, rows);
  use_chinese_glyphs(page->table);
  gtk_widget_show_all(page->table);
}

void show_answer(DiagnosticsPage* page, const UiReply& reply) {
  const bool answered =
      reply.kind == UiReply::Kind::success && fl_value_get_type(reply.value) == FL_VALUE_TYPE_MAP;
  if (answered) {
    page->rows.clear();
    for (const Entry& entry : k_entries) {
      page->rows.push_back(entry.kind == Kind::text ? text_row(entry, reply.value)
                                                    : flag_row(entry, reply.value));
    }
    show_rows(page);
  }
  page->state = State::answered;
  gtk_stack_set_visible_child_name(page->content, answered ? "table" : "failed");
  gtk_widget_set_sensitive(page->copy, answered);
}

void ask(DiagnosticsPage* page) {
  ui_invoke_method(page->messenger.get(), k_service_channel, "getDiagnostics", nullptr,
                   [page, life = page->life](const UiReply& reply) {
                     if (!life.expired()) show_answer(page, reply);
                   });
}

void load(DiagnosticsPage* page) {
  if (page->state == State::loading) return;
  page->state = State::loading;
  gtk_stack_set_visible_child_name(page->content, "loading");
  gtk_widget_set_sensitive(page->copy, FALSE);
  run_later(k_paint_milliseconds, page->life, [page] { ask(page); });
}

GtkWidget* note_new(const char* text) {
  GtkWidget* note = gtk_label_new(text);
  add_style_class(note, "dim-label");
  return note;
}

GtkWidget* table_new(DiagnosticsPage* page) {
  page->table = gtk_grid_new();
  set_all_margins(page->table, k_spacing);
  GtkWidget* scrolled = scrolled_new(page->table, "诊断结果");
  add_style_class(scrolled, "view");
  gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
  return scrolled;
}

GtkWidget* content_new(DiagnosticsPage* page) {
  GtkWidget* content = gtk_stack_new();
  page->content = GTK_STACK(content);
  gtk_stack_add_named(page->content, note_new("正在检查本机环境…"), "loading");
  gtk_stack_add_named(page->content, table_new(page), "table");
  gtk_stack_add_named(page->content, note_new("后台服务没有给出诊断结果，请稍后刷新"), "failed");
  gtk_widget_set_vexpand(content, TRUE);
  return content;
}

GtkWidget* tools_new(DiagnosticsPage* page) {
  page->copy = copy_button_new("复制全部诊断结果", [page] { return text_of(page->rows); });
  GtkWidget* tools = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_spacing);
  gtk_widget_set_halign(tools, GTK_ALIGN_END);
  gtk_container_add(GTK_CONTAINER(tools), page->copy);
  gtk_container_add(GTK_CONTAINER(tools), button_new("刷新", [page] { load(page); }));
  return tools;
}

}  // namespace

std::shared_ptr<DiagnosticsPage> diagnostics_page_new(FlBinaryMessenger* messenger,
                                                      const Life& life) {
  auto page = std::make_shared<DiagnosticsPage>();
  page->messenger = share_object(messenger);
  page->life = life;
  page->widget = gtk_box_new(GTK_ORIENTATION_VERTICAL, k_spacing);
  set_all_margins(page->widget, k_margin);
  gtk_container_add(GTK_CONTAINER(page->widget), content_new(page.get()));
  gtk_container_add(GTK_CONTAINER(page->widget), tools_new(page.get()));
  on_signal(page->widget, "map", [page = page.get()] {
    if (page->state == State::unasked) load(page);
  });
  return page;
}

GtkWidget* diagnostics_page_widget(const DiagnosticsPage& page) { return page.widget; }

bool diagnostics_page_is_loaded(const DiagnosticsPage& page) {
  return page.state == State::answered;
}

}  // namespace preview
