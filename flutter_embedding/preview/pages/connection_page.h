#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_CONNECTION_PAGE_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PAGES_CONNECTION_PAGE_H_

#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/preview/runner/preview_options.h"
#include "flutter_embedding/preview/runner/service_client.h"

namespace preview {

// The page that starts and stops the proxy and shows its status. Main thread only.
struct ConnectionPage;

// The page has to outlive its widget.
std::shared_ptr<ConnectionPage> connection_page_new(const Options& options,
                                                    std::shared_ptr<ServiceClient> client);

// Floating until a container takes it.
GtkWidget* connection_page_widget(const ConnectionPage& page);

void connection_page_show(ConnectionPage* page, const ServiceStatus& status);

// Starts with the chosen configuration and mode, as the connect button does. False when the
// configuration has a fault: nothing begins, and the form shows the fault.
bool connection_page_connect(ConnectionPage* page);

}  // namespace preview

#endif
