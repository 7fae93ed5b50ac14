#ifndef CORVANA_MAIN_WINDOW_H_
#define CORVANA_MAIN_WINDOW_H_

#include <gtk/gtk.h>

// The parts of the one window that need no engine. All of them borrow `window` and run on the main
// thread.

// Sets the window's and the default icon from "logo.png" beside the executable, or a themed icon
// when that file is missing or can't be read; the latter is reported on the console.
void set_window_icon(GtkWindow* window);

// Gives the window its title, in a header bar where the desktop has them.
void set_window_title(GtkWindow* window);

#endif
