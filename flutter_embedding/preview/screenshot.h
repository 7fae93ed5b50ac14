#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_SCREENSHOT_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_SCREENSHOT_H_

#include <gtk/gtk.h>

#include <string>

namespace preview {

// Writes what the widget shows, on its window's background, to a PNG file (name in the file
// system's encoding). It draws by itself, so nothing needs to be on a screen. Returns why it
// couldn't, or an empty string. Main thread only.
std::string write_screenshot(GtkWidget* widget, const std::string& file);

}  // namespace preview

#endif  // CORVANA_FLUTTER_EMBEDDING_PREVIEW_SCREENSHOT_H_
