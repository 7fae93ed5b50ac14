#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PREVIEW_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PREVIEW_H_

#include <flutter_linux/flutter_linux.h>
#include <gtk/gtk.h>

// The window content that stands in for the Flutter application. Like it, the content reaches the
// host over the messenger only. Takes a reference on the messenger and borrows the arguments, which
// may be null; wrong ones are reported on standard error. Returns a floating widget. Main thread
// only, after gtk_init. Never fails.
GtkWidget* preview_new(FlBinaryMessenger* messenger, char** dart_entrypoint_arguments);

#endif
