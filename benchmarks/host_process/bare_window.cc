// The least that a window with this view takes: GTK and the view, nothing else of the host. With
// any argument it also wakes up as often as the host's log stream does, and then does nothing.

#include <flutter_linux/flutter_linux.h>

int main(int argc, char** argv) {
  gtk_init(&argc, &argv);
  GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "bare");
  gtk_window_set_default_size(GTK_WINDOW(window), 480, 680);
  // In the host's order: the window is there before its content.
  gtk_widget_show(window);
  g_autoptr(FlDartProject) project = fl_dart_project_new();
  FlView* const view = fl_view_new(project);
  gtk_widget_show(GTK_WIDGET(view));
  gtk_container_add(GTK_CONTAINER(window), GTK_WIDGET(view));
  const auto keep_timer = [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; };
  if (argc > 1) g_timeout_add(250, keep_timer, nullptr);
  gtk_main();
}
