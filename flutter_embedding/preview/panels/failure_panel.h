#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_FAILURE_PANEL_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_FAILURE_PANEL_H_

#include <gtk/gtk.h>

#include <memory>

#include "flutter_embedding/preview/panels/text_pane.h"
#include "flutter_embedding/preview/runner/service_client.h"

namespace preview {

// What went wrong: code, message and the end of the core's log. The widget is floating; the panel
// has to outlive it. Main thread only.
struct FailurePanel {
  GtkWidget* widget;
  GtkWidget* caption;  // of the code; both are hidden when there is none
  GtkLabel* code;
  GtkLabel* message;
  GtkWidget* log;  // the caption and the pane, hidden as one when there is no log
  TextPane log_pane;
  Failure shown;
};

std::unique_ptr<FailurePanel> failure_panel_new();

void failure_panel_show(FailurePanel* panel, const Failure& failure);

}  // namespace preview

#endif
