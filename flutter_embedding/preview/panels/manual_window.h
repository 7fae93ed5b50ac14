#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_MANUAL_WINDOW_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_MANUAL_WINDOW_H_

#include <gtk/gtk.h>

#include <string>

namespace preview {

// Opens a window with the manual, which lies beside the executable, scrolled to the heading
// `heading` or, when there is none, to the beginning. It belongs to the window of the widget
// `near`. Main thread only.
void open_manual(GtkWidget* near, const std::string& heading);

}  // namespace preview

#endif
