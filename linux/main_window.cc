#include "main_window.h"

#include <gdk/gdkx.h>

#include <string>

#include "support/console.h"
#include "support/files.h"

static constexpr char k_title[] = "Corvana";
// The icon's literal name, not a placeholder that something fills in.
static constexpr char k_fallback_icon_name[] = "{CONF_MERCHANT_BRAND_NAME_EN_LOWER}";

static bool set_icon_from_file(GtkWindow* window, const std::string& path) {
  g_autoptr(GError) error = nullptr;
  if (!gtk_window_set_icon_from_file(window, path.c_str(), &error)) {
    if (error == nullptr) return false;
    print_error_line(std::string("gtk_window_set_icon_from_file 失败: ") + error->message);
    return false;
  }
  g_autoptr(GdkPixbuf) image = gdk_pixbuf_new_from_file(path.c_str(), nullptr);
  if (image != nullptr) gtk_window_set_default_icon(image);
  return true;
}

void set_window_icon(GtkWindow* window) {
  const std::string path = get_executable_dir() + "/logo.png";
  if (path_exists(path) && set_icon_from_file(window, path)) return;
  gtk_window_set_icon_name(window, k_fallback_icon_name);
  gtk_window_set_default_icon_name(k_fallback_icon_name);
}

// Window managers other than GNOME's draw a title bar of their own, so that two would show.
static bool wants_header_bar(GtkWindow* window) {
  GdkScreen* const screen = gtk_window_get_screen(window);
  if (!GDK_IS_X11_SCREEN(screen)) return true;
  return g_strcmp0(gdk_x11_screen_get_window_manager_name(screen), "GNOME Shell") == 0;
}

void set_window_title(GtkWindow* window) {
  if (!wants_header_bar(window)) {
    gtk_window_set_title(window, k_title);
    return;
  }
  GtkHeaderBar* const header_bar = GTK_HEADER_BAR(gtk_header_bar_new());
  gtk_widget_show(GTK_WIDGET(header_bar));
  gtk_header_bar_set_title(header_bar, k_title);
  gtk_header_bar_set_show_close_button(header_bar, TRUE);
  gtk_window_set_titlebar(window, GTK_WIDGET(header_bar));
}
