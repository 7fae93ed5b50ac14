#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_LOG_PAGE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_LOG_PAGE_H_

#include <flutter_linux/flutter_linux.h>
#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/later.h"

namespace preview {

// The page that shows the core's log. Main thread only.
struct LogPage;

// The page has to outlive its widget. Takes a reference on the messenger; nothing happens after
// `life` ended.
std::shared_ptr<LogPage> log_page_new(FlBinaryMessenger* messenger, const Life& life);

// Floating until a container takes it.
GtkWidget* log_page_widget(const LogPage& page);

// Shows the search field and moves the focus there.
void log_page_search(LogPage* page);

// Listens until the engine ends; needs no cancelling.
void log_page_listen(LogPage* page);

}  // namespace preview

#endif
