#include "flutter_embedding/preview/panels/proxy_address_panel.h"

#include <string>

#include "flutter_embedding/preview/panels/widgets.h"

namespace preview {
namespace {

constexpr char k_source_line[] = "source ~/.config/corvana/proxy.sh";
// In this mode the script unsets the variables.
constexpr char k_no_source_line[] = "此模式下不设置终端环境变量";
constexpr char k_no_port[] = "配置中没有 mixed 入站端口";

GtkWidget* copy_button_of(GtkWidget* value, const char* accessible_name) {
  return copy_button_new(accessible_name, [value] { return gtk_label_get_text(GTK_LABEL(value)); });
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
  set_all_margins(grid, k_spacing);
  GtkWidget* address = value_label_new("");
  GtkWidget* source_line = value_label_new("");
  panel->address = GTK_LABEL(address);
  panel->copy_address = copy_button_of(address, "复制本机代理地址");
  panel->source_line = GTK_LABEL(source_line);
  panel->copy_source_line = copy_button_of(source_line, "复制终端命令");
  fill_grid(grid, {{caption_new("代理地址", address), address, panel->copy_address},
                   {caption_new("终端使用", source_line), source_line, panel->copy_source_line}});
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
