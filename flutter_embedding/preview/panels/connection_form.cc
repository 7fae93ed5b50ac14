#include "flutter_embedding/preview/panels/connection_form.h"

#include "flutter_embedding/guarded.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/preview/runner/default_config.h"

namespace preview {
namespace {

// The home directory's path would fill a narrow field.
std::string with_tilde(const std::string& path) {
  const std::string home = std::string(g_get_home_dir()) + "/";
  return path.compare(0, home.size(), home) == 0 ? "~/" + path.substr(home.size()) : path;
}

std::string without_tilde(const std::string& path) {
  return path.compare(0, 2, "~/") == 0 ? g_get_home_dir() + path.substr(1) : path;
}

std::string entered_path(GtkEntry* entry) { return without_tilde(gtk_entry_get_text(entry)); }

void show_path(GtkEntry* entry, const std::string& path) {
  gtk_entry_set_text(entry, with_tilde(path).c_str());
  // Shows the path's end, which is the file's name.
  gtk_editable_set_position(GTK_EDITABLE(entry), -1);
}

void take_chosen_file(GtkNativeDialog* chooser, int response, gpointer entry) {
  g_autofree char* path = response == GTK_RESPONSE_ACCEPT
                              ? gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(chooser))
                              : nullptr;
  if (path == nullptr) return;
  g_autofree char* utf8 = g_filename_display_name(path);
  run_guarded([&] { show_path(GTK_ENTRY(entry), utf8); });
}

void add_file_filter(GtkFileChooser* chooser, const char* name, const char* pattern) {
  GtkFileFilter* filter = gtk_file_filter_new();
  gtk_file_filter_set_name(filter, name);
  gtk_file_filter_add_pattern(filter, pattern);
  gtk_file_chooser_add_filter(chooser, filter);
}

void open_chooser(GtkEntry* entry) {
  GtkWidget* window = gtk_widget_get_toplevel(GTK_WIDGET(entry));
  GtkFileChooserNative* chooser = gtk_file_chooser_native_new(
      "选择配置文件", GTK_WINDOW(window), GTK_FILE_CHOOSER_ACTION_OPEN, "选择(_O)", "取消(_C)");
  add_file_filter(GTK_FILE_CHOOSER(chooser), "JSON 配置", "*.json");
  add_file_filter(GTK_FILE_CHOOSER(chooser), "所有文件", "*");
  gtk_file_chooser_set_filename(GTK_FILE_CHOOSER(chooser), entered_path(entry).c_str());
  gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(chooser), TRUE);
  g_signal_connect_object(chooser, "response", G_CALLBACK(take_chosen_file), entry,
                          GConnectFlags{});
  gtk_native_dialog_show(GTK_NATIVE_DIALOG(chooser));
  // The entry owns it: the next chooser, or the end of the window, releases it.
  g_object_set_data_full(G_OBJECT(entry), "chooser", chooser, g_object_unref);
}

GtkWidget* config_row_new(ConnectionForm* form, const Options& options) {
  GtkWidget* entry = gtk_entry_new();
  form->config = GTK_ENTRY(entry);
  gtk_entry_set_placeholder_text(form->config, "默认配置");
  gtk_widget_set_hexpand(entry, TRUE);
  on_signal(entry, "changed", [entry, form] {
    gtk_widget_set_tooltip_text(entry, gtk_entry_get_text(GTK_ENTRY(entry)));
    gtk_widget_hide(GTK_WIDGET(form->complaint));
  });
  show_path(form->config, options.config.empty() ? default_config_path() : options.config);

  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
  gtk_container_add(GTK_CONTAINER(row), entry);
  gtk_container_add(GTK_CONTAINER(row),
                    button_new("浏览(_B)…", [entry] { open_chooser(GTK_ENTRY(entry)); }));
  return row;
}

GtkWidget* mode_row_new(ConnectionForm* form, const Options& options) {
  GtkWidget* set = gtk_radio_button_new_with_mnemonic(nullptr, "设置系统代理(_S)");
  GtkWidget* leave_off =
      gtk_radio_button_new_with_mnemonic_from_widget(GTK_RADIO_BUTTON(set), "不使用系统代理(_N)");
  gtk_widget_set_tooltip_text(set, "连接后，桌面上的程序经本机端口上网");
  gtk_widget_set_tooltip_text(leave_off, "只开放本机端口，由各程序自行使用");
  form->no_system_proxy = GTK_TOGGLE_BUTTON(leave_off);
  gtk_toggle_button_set_active(form->no_system_proxy,
                               options.proxy_mode == ProxyMode::no_system_proxy);

  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_margin);
  gtk_container_add(GTK_CONTAINER(row), set);
  gtk_container_add(GTK_CONTAINER(row), leave_off);
  return row;
}

}  // namespace

std::unique_ptr<ConnectionForm> connection_form_new(const Options& options) {
  auto form = std::make_unique<ConnectionForm>();
  form->widget = gtk_grid_new();
  GtkWidget* complaint = value_label_new("");
  form->complaint = GTK_LABEL(complaint);
  add_style_class(complaint, "preview-bad");
  hide_until_wanted(complaint);
  GtkWidget* config_row = config_row_new(form.get(), options);
  GtkWidget* mode_row = mode_row_new(form.get(), options);
  fill_grid(form->widget, {{caption_new("配置文件(_F)", GTK_WIDGET(form->config)), config_row},
                           {nullptr, complaint},
                           {dim_label_new("代理模式"), mode_row}});
  return form;
}

std::string connection_form_config(const ConnectionForm& form) {
  const std::string path = entered_path(form.config);
  return path.empty() ? default_config_path() : path;
}

void connection_form_complain(const ConnectionForm& form, const std::string& complaint) {
  gtk_label_set_text(form.complaint, complaint.c_str());
  gtk_widget_set_visible(GTK_WIDGET(form.complaint), !complaint.empty());
  if (!complaint.empty()) gtk_widget_grab_focus(GTK_WIDGET(form.config));
}

ProxyMode connection_form_mode(const ConnectionForm& form) {
  return gtk_toggle_button_get_active(form.no_system_proxy) ? ProxyMode::no_system_proxy
                                                            : ProxyMode::set_system_proxy;
}

}  // namespace preview
