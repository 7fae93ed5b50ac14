#include "flutter_embedding/preview/pages/connection_page.h"

#include <utility>

#include "flutter_embedding/preview/panels/connection_form.h"
#include "flutter_embedding/preview/panels/failure_panel.h"
#include "flutter_embedding/preview/panels/proxy_address_panel.h"
#include "flutter_embedding/preview/panels/status_card.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/preview/runner/default_config.h"

namespace preview {

struct ConnectionPage {
  std::shared_ptr<ServiceClient> client;
  std::unique_ptr<StatusCard> card;
  std::unique_ptr<ConnectionForm> form;
  std::unique_ptr<ProxyAddressPanel> address;
  std::unique_ptr<FailurePanel> failure;
  GtkWidget* foreign_core_note;
  GtkWidget* widget;
  GtkWidget* connect;
  GtkWidget* disconnect;
};

namespace {

constexpr char k_foreign_core[] = "此核心由先前的会话启动，代理地址以其配置为准";

bool is_failed(Phase phase) { return phase == Phase::start_failed || phase == Phase::stop_failed; }

bool can_connect(Phase phase) {
  return phase == Phase::disconnected || phase == Phase::lost || is_failed(phase);
}

bool can_disconnect(const ServiceStatus& status) {
  if (status.phase == Phase::starting) return !status.stop_wanted;
  return status.phase == Phase::connected || (is_failed(status.phase) && status.core_running);
}

// Moves the focus from a button that has become insensitive to the other one.
void keep_focus(const ConnectionPage& page) {
  GtkWidget* window = gtk_widget_get_toplevel(page.widget);
  if (!GTK_IS_WINDOW(window) || !gtk_widget_get_mapped(page.widget)) return;
  GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(window));
  if (focus != nullptr && gtk_widget_is_sensitive(focus)) return;
  for (GtkWidget* button : {page.disconnect, page.connect}) {
    if (!gtk_widget_is_sensitive(button)) continue;
    gtk_widget_grab_focus(button);
    return;
  }
}

GtkWidget* buttons_new(ConnectionPage* page) {
  page->connect = button_new("连接(_C)", [page] { connection_page_connect(page); });
  page->disconnect =
      button_new("断开(_D)", [page] { service_client_disconnect(page->client.get()); });
  add_style_class(page->connect, "suggested-action");
  add_style_class(page->disconnect, "destructive-action");
  GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, k_spacing);
  gtk_box_set_homogeneous(GTK_BOX(buttons), TRUE);
  for (GtkWidget* button : {page->disconnect, page->connect}) {
    gtk_box_pack_start(GTK_BOX(buttons), button, TRUE, TRUE, 0);
  }
  return buttons;
}

// Long messages scroll instead of pushing the buttons out of the window.
GtkWidget* scrolling_details_new(ConnectionPage* page) {
  GtkWidget* details = gtk_box_new(GTK_ORIENTATION_VERTICAL, k_margin);
  for (GtkWidget* panel : {page->address->widget, page->foreign_core_note, page->failure->widget}) {
    hide_until_wanted(panel);
    gtk_container_add(GTK_CONTAINER(details), panel);
  }
  GtkWidget* scrolled = scrolled_new(details, "连接详情");
  gtk_widget_set_vexpand(scrolled, TRUE);
  // Keeps the beginning of a failure visible in the smallest window.
  gtk_scrolled_window_set_min_content_height(GTK_SCROLLED_WINDOW(scrolled), 96);
  return scrolled;
}

}  // namespace

std::shared_ptr<ConnectionPage> connection_page_new(const Options& options,
                                                    std::shared_ptr<ServiceClient> client) {
  auto page = std::make_shared<ConnectionPage>();
  page->client = std::move(client);
  page->card = status_card_new();
  page->form = connection_form_new(options);
  page->address = proxy_address_panel_new();
  page->foreign_core_note = value_label_new(k_foreign_core);
  page->failure = failure_panel_new();
  page->widget = gtk_box_new(GTK_ORIENTATION_VERTICAL, k_margin);
  set_all_margins(page->widget, k_margin);
  for (GtkWidget* part : {page->card->widget, page->form->widget, scrolling_details_new(page.get()),
                          buttons_new(page.get())}) {
    gtk_container_add(GTK_CONTAINER(page->widget), part);
  }
  on_signal(page->form->config, "activate", [page = page.get()] { connection_page_connect(page); });
  connection_page_show(page.get(), ServiceStatus{});
  return page;
}

GtkWidget* connection_page_widget(const ConnectionPage& page) { return page.widget; }

void connection_page_show(ConnectionPage* page, const ServiceStatus& status) {
  const bool connected = status.phase == Phase::connected;
  status_card_show(*page->card, status, connection_form_mode(*page->form));
  gtk_widget_set_sensitive(page->form->widget, can_connect(status.phase));
  gtk_widget_set_sensitive(page->connect, can_connect(status.phase));
  gtk_widget_set_sensitive(page->disconnect, can_disconnect(status));
  // A core that was running before may use another configuration than the form names.
  gtk_widget_set_visible(page->address->widget, connected && status.started_here);
  gtk_widget_set_visible(page->foreign_core_note, connected && !status.started_here);
  gtk_widget_set_visible(page->failure->widget, is_failed(status.phase));
  if (connected && status.started_here) {
    proxy_address_panel_show(*page->address,
                             mixed_port_of_file(connection_form_config(*page->form)),
                             connection_form_mode(*page->form));
  }
  if (is_failed(status.phase)) failure_panel_show(page->failure.get(), status.failure);
  keep_focus(*page);
}

bool connection_page_connect(ConnectionPage* page) {
  const std::string config = connection_form_config(*page->form);
  const std::string fault = find_fault_in_config(config);
  connection_form_complain(*page->form, fault);
  if (!fault.empty()) return false;
  const std::string complaint = config == default_config_path() ? ensure_default_config() : "";
  if (!complaint.empty()) {
    service_client_fail(page->client.get(),
                        {"config_unwritable", "无法写入默认配置 " + config + "\n" + complaint, ""});
    return true;
  }
  service_client_connect(page->client.get(), config, connection_form_mode(*page->form));
  return true;
}

}  // namespace preview
