#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_STATUS_CARD_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_STATUS_CARD_H_

#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/preview/runner/service_client.h"

namespace preview {

// The status as an icon, a title and a hint. The widget is floating; the card has to outlive it.
// Main thread only.
struct StatusCard {
  GtkWidget* widget;
  GtkStack* sign;  // an image, or the spinner while something is under way
  GtkImage* image;
  GtkSpinner* spinner;
  GtkLabel* title;
  GtkLabel* hint;
};

std::unique_ptr<StatusCard> status_card_new();

// `mode` is the one of the start.
void status_card_show(const StatusCard& card, const ServiceStatus& status, ProxyMode mode);

}  // namespace preview

#endif
