#include "flutter_embedding/preview/preview.h"

#include <cstdio>
#include <memory>
#include <string>

#include "flutter_embedding/guarded.h"
#include "flutter_embedding/preview/pages/connection_page.h"
#include "flutter_embedding/preview/pages/diagnostics_page.h"
#include "flutter_embedding/preview/pages/log_page.h"
#include "flutter_embedding/preview/panels/widgets.h"
#include "flutter_embedding/preview/runner/automation.h"

namespace preview {
namespace {

constexpr int k_max_width = 600;  // longer lines of text are hard to read
constexpr char k_preview[] = "preview";

struct Preview {
  Options options;
  GtkWidget* root = nullptr;
  GtkStack* pages = nullptr;
  // Ends when the root is destroyed. The other members last until the root is finalized, because
  // signals may still arrive until then.
  std::shared_ptr<void> life = std::make_shared<char>();
  std::shared_ptr<ServiceClient> client;
  std::shared_ptr<ConnectionPage> connection;
  std::shared_ptr<LogPage> log;
  std::shared_ptr<DiagnosticsPage> diagnostics;
  std::shared_ptr<Automation> automation;
};

void complain(const std::string& text) {
  const std::string line = text + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

void free_preview(gpointer data) { delete static_cast<Preview*>(data); }

bool is_drawn(const Preview& preview) {
  if (gtk_stack_get_transition_running(preview.pages)) return false;
  return preview.options.page != "diagnostics" || diagnostics_page_is_loaded(*preview.diagnostics);
}

void take_screenshot(const Preview& preview) {
  const std::string complaint = write_screenshot(preview.root, preview.options.screenshot);
  if (complaint.empty()) return;
  g_autofree char* file = g_filename_display_name(preview.options.screenshot.c_str());
  complain(std::string("无法写入截图 ") + file + ": " + complaint);
}

void close_window(const Preview& preview) {
  GtkWidget* window = gtk_widget_get_toplevel(preview.root);
  if (GTK_IS_WINDOW(window)) gtk_window_close(GTK_WINDOW(window));
}

void make_client(Preview* preview, FlBinaryMessenger* messenger) {
  preview->client =
      service_client_new(messenger, preview->life, [preview](const ServiceStatus& status) {
        connection_page_show(preview->connection.get(), status);
        automation_notice(preview->automation.get(), status);
      });
  AutomationActions actions;
  actions.connect = [preview] { return connection_page_connect(preview->connection.get()); };
  actions.disconnect = [preview] { service_client_disconnect(preview->client.get()); };
  actions.is_drawn = [preview] { return is_drawn(*preview); };
  actions.take_screenshot = [preview] { take_screenshot(*preview); };
  actions.close = [preview] { close_window(*preview); };
  preview->automation = automation_new(preview->options, preview->life, std::move(actions));
}

void make_pages(Preview* preview, FlBinaryMessenger* messenger) {
  preview->connection = connection_page_new(preview->options, preview->client);
  preview->log = log_page_new(messenger, preview->life);
  preview->diagnostics = diagnostics_page_new(messenger, preview->life);
  preview->pages = GTK_STACK(gtk_stack_new());
  gtk_stack_set_transition_type(preview->pages, GTK_STACK_TRANSITION_TYPE_CROSSFADE);
  gtk_stack_add_titled(preview->pages, connection_page_widget(*preview->connection), "connection",
                       "连接");
  gtk_stack_add_titled(preview->pages, log_page_widget(*preview->log), "log", "日志");
  gtk_stack_add_titled(preview->pages, diagnostics_page_widget(*preview->diagnostics),
                       "diagnostics", "诊断");
}

// The widget that had the focus on this page may be hidden or insensitive now. Then the page's
// first widget gets it.
void keep_focus(const Preview& preview) {
  GtkWidget* window = gtk_widget_get_toplevel(preview.root);
  GtkWidget* focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
  if (focus != nullptr && gtk_widget_is_visible(focus) && gtk_widget_is_sensitive(focus)) return;
  gtk_widget_child_focus(gtk_stack_get_visible_child(preview.pages), GTK_DIR_TAB_FORWARD);
}

void make_root(Preview* preview) {
  GtkWidget* switcher = gtk_stack_switcher_new();
  gtk_stack_switcher_set_stack(GTK_STACK_SWITCHER(switcher), preview->pages);
  gtk_box_set_homogeneous(GTK_BOX(switcher), TRUE);
  gtk_widget_set_halign(switcher, GTK_ALIGN_CENTER);
  gtk_widget_set_margin_top(switcher, k_spacing);
  preview->root = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_container_add(GTK_CONTAINER(preview->root), switcher);
  gtk_container_add(GTK_CONTAINER(preview->root), GTK_WIDGET(preview->pages));
  gtk_widget_set_hexpand(preview->root, TRUE);
  gtk_widget_set_vexpand(preview->root, TRUE);
  use_chinese_glyphs(preview->root);
  gtk_widget_show_all(preview->root);
  gtk_stack_set_visible_child_name(preview->pages, preview->options.page.c_str());
  g_object_set_data_full(G_OBJECT(preview->root), k_preview, preview, free_preview);
  on_signal(preview->root, "destroy", [preview] { preview->life.reset(); });
  on_signal(preview->pages, "notify::visible-child",
            [preview] { run_when_idle(preview->life, [preview] { keep_focus(*preview); }); });
}

void turn_page(Preview* preview, bool forward) {
  g_autoptr(GList) pages = gtk_container_get_children(GTK_CONTAINER(preview->pages));
  const GList* shown = g_list_find(pages, gtk_stack_get_visible_child(preview->pages));
  const GList* next = forward ? shown->next : shown->prev;
  if (next != nullptr) gtk_stack_set_visible_child(preview->pages, GTK_WIDGET(next->data));
}

bool take_key(Preview* preview, guint key) {
  switch (key) {
    case GDK_KEY_q:
    case GDK_KEY_w:
      close_window(*preview);
      return true;
    case GDK_KEY_Page_Up:
      turn_page(preview, false);
      return true;
    case GDK_KEY_Page_Down:
      turn_page(preview, true);
      return true;
    case GDK_KEY_f:
      gtk_stack_set_visible_child_name(preview->pages, "log");
      log_page_search(preview->log.get());
      return true;
    default:
      return false;
  }
}

gboolean on_key(GtkWidget*, GdkEventKey* event, gpointer root) {
  const GdkModifierType held =
      static_cast<GdkModifierType>(event->state & gtk_accelerator_get_default_mod_mask());
  if (held != GDK_CONTROL_MASK) return GDK_EVENT_PROPAGATE;
  bool taken = false;
  run_guarded([&] {
    auto* preview = static_cast<Preview*>(g_object_get_data(G_OBJECT(root), k_preview));
    taken = take_key(preview, gdk_keyval_to_lower(event->keyval));
  });
  return taken ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
}

void limit_width(Preview* preview) {
  const int surplus = gtk_widget_get_allocated_width(preview->root) - k_max_width;
  const int margin = MAX(surplus / 2, 0);
  if (gtk_widget_get_margin_start(GTK_WIDGET(preview->pages)) == margin) return;
  gtk_widget_set_margin_start(GTK_WIDGET(preview->pages), margin);
  gtk_widget_set_margin_end(GTK_WIDGET(preview->pages), margin);
}

void watch_window(Preview* preview) {
  GtkWidget* window = gtk_widget_get_toplevel(preview->root);
  // The window may outlive the view.
  g_signal_connect_object(window, "key-press-event", G_CALLBACK(on_key), preview->root,
                          GConnectFlags{});
  on_signal(preview->root, "size-allocate",
            [preview] { run_later(0, preview->life, [preview] { limit_width(preview); }); });
  limit_width(preview);
}

// Listens before the log page is shown: the stream replays 256 KiB a second, so a long log takes a
// while to arrive.
void start(Preview* preview) {
  watch_window(preview);
  log_page_listen(preview->log.get());
  service_client_check(preview->client.get());
}

}  // namespace
}  // namespace preview

GtkWidget* preview_new(FlBinaryMessenger* messenger, char** dart_entrypoint_arguments) {
  using namespace preview;
  ParsedOptions parsed = parse_options(dart_entrypoint_arguments);
  if (!parsed.complaint.empty()) complain("界面参数有误，忽略该参数: " + parsed.complaint);
  load_style();
  auto* the_preview = new Preview;
  the_preview->options = std::move(parsed.options);
  make_client(the_preview, messenger);
  make_pages(the_preview, messenger);
  make_root(the_preview);
  // The host installs its handlers only after it has made the view.
  run_later(0, the_preview->life, [the_preview] { start(the_preview); });
  return the_preview->root;
}
