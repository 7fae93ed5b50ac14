// A GTK module for a host whose teardown never ends.
#include <gtk/gtk.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

extern "C" G_MODULE_EXPORT void gtk_module_init(gint*, gchar***) {
  std::atexit([] {
    std::puts("teardown hangs");
    std::fflush(stdout);
    while (true) pause();
  });
}
