#include "flutter_embedding/preview/panels/failure_panel.h"

#include "flutter_embedding/preview/panels/manual_window.h"
#include "flutter_embedding/preview/panels/text_pane.h"
#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

std::string as_text(const Failure& failure) {
  std::string text = failure.code.empty() ? "" : "错误代码: " + failure.code + "\n";
  text += failure.message + "\n";
  if (!failure.log_tail.empty()) text += "\n" + failure.log_tail;
  return text;
}

void show_log(FailurePanel* panel, std::string log_tail) {
  gtk_widget_set_visible(panel->log, !log_tail.empty());
  if (!log_tail.empty() && log_tail.back() == '\n') log_tail.pop_back();
  gtk_text_buffer_set_text(panel->log_pane.buffer, "", 0);
  text_pane_append(panel->log_pane, log_tail);
}

void show_manual(const FailurePanel& panel) {
  open_manual(panel.widget, panel.shown.code.empty() ? "错误代码" : panel.shown.code);
}

GtkWidget* header_new(FailurePanel* panel) {
  GtkWidget* code = value_label_new("");
  panel->code = GTK_LABEL(code);
  gtk_label_set_line_wrap(panel->code, FALSE);
  add_style_class(code, "monospace");
  add_style_class(code, "preview-bad");
  panel->caption = dim_label_new("错误代码");
  GtkWidget* header = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_spacing);
  gtk_container_add(GTK_CONTAINER(header), panel->caption);
  gtk_container_add(GTK_CONTAINER(header), code);
  gtk_container_add(GTK_CONTAINER(header),
                    button_new("查手册(_H)", [panel] { show_manual(*panel); }));
  gtk_container_add(GTK_CONTAINER(header),
                    copy_button_new("复制错误信息", [panel] { return as_text(panel->shown); }));
  for (GtkWidget* part : {panel->caption, code}) hide_until_wanted(part);
  return header;
}

GtkWidget* log_new(FailurePanel* panel) {
  panel->log = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
  panel->log_pane = text_pane_new("核心日志的最后几行");
  // The last lines tell why the core ended.
  text_pane_follow_end(panel->log_pane);
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(panel->log_pane.widget), 120);
  gtk_container_add(GTK_CONTAINER(panel->log), dim_label_new("核心日志末尾"));
  gtk_container_add(GTK_CONTAINER(panel->log), panel->log_pane.widget);
  hide_until_wanted(panel->log);
  return panel->log;
}

}  // namespace

std::unique_ptr<FailurePanel> failure_panel_new() {
  auto panel = std::make_unique<FailurePanel>();
  GtkWidget* message = value_label_new("");
  panel->message = GTK_LABEL(message);
  panel->widget = gtk_box_new(GTK_ORIENTATION_VERTICAL, k_spacing);
  gtk_container_add(GTK_CONTAINER(panel->widget), header_new(panel.get()));
  gtk_container_add(GTK_CONTAINER(panel->widget), message);
  gtk_container_add(GTK_CONTAINER(panel->widget), log_new(panel.get()));
  return panel;
}

void failure_panel_show(FailurePanel* panel, const Failure& failure) {
  panel->shown = failure;
  gtk_widget_set_visible(panel->caption, !failure.code.empty());
  gtk_widget_set_visible(GTK_WIDGET(panel->code), !failure.code.empty());
  gtk_label_set_text(panel->code, failure.code.c_str());
  gtk_label_set_text(panel->message, failure.message.c_str());
  show_log(panel, failure.log_tail);
}

}  // namespace preview
