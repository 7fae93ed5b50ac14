#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_DIAGNOSTICS_PAGE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_DIAGNOSTICS_PAGE_H_

#include <flutter_linux/flutter_linux.h>
#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/later.h"

namespace preview {

// The page with the report on the machine, which is fetched when the page is first shown. Main
// thread only.
struct DiagnosticsPage;

// The page has to outlive its widget. Takes a reference on the messenger; nothing happens after
// `life` ended.
std::shared_ptr<DiagnosticsPage> diagnostics_page_new(FlBinaryMessenger* messenger,
                                                      const Life& life);

// Floating until a container takes it.
GtkWidget* diagnostics_page_widget(const DiagnosticsPage& page);

// Whether the report, or the note that it couldn't be fetched, is shown.
bool diagnostics_page_is_loaded(const DiagnosticsPage& page);

}  // namespace preview

#endif
