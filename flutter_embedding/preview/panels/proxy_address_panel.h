#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_PROXY_ADDRESS_PANEL_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_PROXY_ADDRESS_PANEL_H_

#include <gtk/gtk.h>

#include <memory>
#include <optional>

#include "flutter_embedding/preview/runner/preview_options.h"

namespace preview {

// The proxy's address, and the command that sets it in a terminal. The widget is floating; the
// panel has to outlive it. Main thread only.
struct ProxyAddressPanel {
  GtkWidget* widget;
  GtkLabel* address;
  GtkWidget* copy_address;
  GtkLabel* source_line;
  GtkWidget* copy_source_line;
};

std::unique_ptr<ProxyAddressPanel> proxy_address_panel_new();

void proxy_address_panel_show(const ProxyAddressPanel& panel, std::optional<int> port,
                              ProxyMode mode);

}  // namespace preview

#endif
