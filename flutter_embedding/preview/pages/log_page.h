#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_LOG_PAGE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_LOG_PAGE_H_

#include <flutter_linux/flutter_linux.h>
#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/later.h"

namespace preview {

// The page that follows the core's log. Main thread only.
struct LogPage;

// The page has to outlive its widget. Takes a reference on the messenger; nothing happens after
// `life` ended.
std::shared_ptr<LogPage> log_page_new(FlBinaryMessenger* messenger, const Life& life);

// Floating until a container takes it.
GtkWidget* log_page_widget(const LogPage& page);

// Shows the field for the text to find, or goes to it.
void log_page_search(LogPage* page);

// Lasts until the engine goes, which needs no cancelling: it forgets whom it would tell.
void log_page_listen(LogPage* page);

}  // namespace preview

#endif
