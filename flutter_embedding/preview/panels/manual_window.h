#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_MANUAL_WINDOW_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_MANUAL_WINDOW_H_

#include <gtk/gtk.h>

#include <string>

namespace preview {

// Shows the manual beside the executable in a window of its own above that of `near`, from the
// heading on that is exactly `heading`; from the beginning when there is no such heading. Main
// thread only.
void open_manual(GtkWidget* near, const std::string& heading);

}  // namespace preview

#endif
