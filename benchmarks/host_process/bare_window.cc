// The least that a window with this view takes: GTK and the view, nothing else of the host.

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
  gtk_main();
}
