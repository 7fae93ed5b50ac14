#include "flutter_embedding/preview/screenshot.h"

namespace preview {

std::string write_screenshot(GtkWidget* widget, const std::string& file) {
  GtkWidget* window = gtk_widget_get_toplevel(widget);
  // Without a compositor's ticks a late change may not have been laid out yet, and GTK draws
  // nothing then.
  gtk_container_check_resize(GTK_CONTAINER(window));
  const int width = gtk_widget_get_allocated_width(widget);
  const int height = gtk_widget_get_allocated_height(widget);
  const int scale = gtk_widget_get_scale_factor(widget);
  cairo_surface_t* surface =
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width * scale, height * scale);
  cairo_surface_set_device_scale(surface, scale, scale);
  cairo_t* cairo = cairo_create(surface);
  gtk_render_background(gtk_widget_get_style_context(window), cairo, 0, 0, width, height);
  gtk_widget_draw(widget, cairo);
  cairo_destroy(cairo);
  g_autoptr(GdkPixbuf) picture =
      gdk_pixbuf_get_from_surface(surface, 0, 0, width * scale, height * scale);
  cairo_surface_destroy(surface);
  if (picture == nullptr) return "窗口没有内容";

  g_autoptr(GError) error = nullptr;
  if (gdk_pixbuf_save(picture, file.c_str(), "png", &error, nullptr)) return {};
  return error->message;
}

}  // namespace preview
