#include "flutter_embedding/preview/panels/proxy_address_panel.h"

#include <string>

#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

constexpr char k_source_line[] = "source ~/.config/corvana/proxy.sh";
// The script takes the variables back in this mode.
constexpr char k_no_source_line[] = "此模式下不设置终端环境变量";
constexpr char k_no_port[] = "配置中没有 mixed 入站端口";

GtkLabel* add_row(GtkGrid* grid, int row, const char* caption, const char* copy_name,
                  GtkWidget** copy_button) {
  GtkWidget* value = value_label_new("");
  *copy_button =
      copy_button_new(copy_name, [value] { return gtk_label_get_text(GTK_LABEL(value)); });
  GtkWidget* label = dim_label_new(caption);
  gtk_label_set_mnemonic_widget(GTK_LABEL(label), value);
  gtk_grid_attach(grid, label, 0, row, 1, 1);
  gtk_grid_attach(grid, value, 1, row, 1, 1);
  gtk_grid_attach(grid, *copy_button, 2, row, 1, 1);
  return GTK_LABEL(value);
}

void show_text(GtkLabel* label, const std::string& text, bool can_be_copied,
               GtkWidget* copy_button) {
  gtk_label_set_text(label, text.c_str());
  set_value_language(label, can_be_copied ? "en" : "zh-cn");
  set_style_class(GTK_WIDGET(label), "dim-label", !can_be_copied);
  set_style_class(GTK_WIDGET(label), "monospace", can_be_copied);
  gtk_widget_set_sensitive(copy_button, can_be_copied);
}

}  // namespace

std::unique_ptr<ProxyAddressPanel> proxy_address_panel_new() {
  auto panel = std::make_unique<ProxyAddressPanel>();
  GtkWidget* grid = gtk_grid_new();
  gtk_grid_set_row_spacing(GTK_GRID(grid), k_spacing);
  gtk_grid_set_column_spacing(GTK_GRID(grid), k_spacing);
  set_all_margins(grid, k_spacing);
  panel->address = add_row(GTK_GRID(grid), 0, "代理地址", "复制本机代理地址", &panel->copy_address);
  panel->source_line =
      add_row(GTK_GRID(grid), 1, "终端使用", "复制终端命令", &panel->copy_source_line);
  panel->widget = gtk_frame_new(nullptr);
  add_style_class(panel->widget, "view");
  gtk_container_add(GTK_CONTAINER(panel->widget), grid);
  return panel;
}

void proxy_address_panel_show(const ProxyAddressPanel& panel, std::optional<int> port,
                              ProxyMode mode) {
  const bool in_terminals = mode == ProxyMode::set_system_proxy;
  show_text(panel.address, port ? "127.0.0.1:" + std::to_string(*port) : k_no_port,
            port.has_value(), panel.copy_address);
  show_text(panel.source_line, in_terminals ? k_source_line : k_no_source_line, in_terminals,
            panel.copy_source_line);
}

}  // namespace preview
