#ifndef CORVANA_MY_APPLICATION_H_
#define CORVANA_MY_APPLICATION_H_

#include <gtk/gtk.h>

G_DECLARE_FINAL_TYPE(MyApplication, my_application, MY, APPLICATION, GtkApplication)

// A new application; the caller owns the one reference. Running it shows the window, and every
// launch is an instance of its own. All of it belongs to the main thread.
MyApplication* my_application_new();

#endif
