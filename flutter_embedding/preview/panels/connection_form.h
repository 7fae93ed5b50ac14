#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_CONNECTION_FORM_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_PANELS_CONNECTION_FORM_H_

#include <gtk/gtk.h>

#include <memory>
#include <string>

#include "flutter_embedding/preview/runner/preview_options.h"

namespace preview {

// The two choices that a start needs. The widget is floating; the form has to outlive it. Main
// thread only.
struct ConnectionForm {
  GtkWidget* widget;
  GtkEntry* config;
  GtkToggleButton* no_system_proxy;
  GtkLabel* complaint;  // about the path, below its field; hidden when there is none
};

std::unique_ptr<ConnectionForm> connection_form_new(const Options& options);

// The chosen configuration's path in UTF-8; the default one if the field is empty.
std::string connection_form_config(const ConnectionForm& form);

// Shows what is wrong with the path, until it changes.
void connection_form_complain(const ConnectionForm& form, const std::string& complaint);

ProxyMode connection_form_mode(const ConnectionForm& form);

}  // namespace preview

#endif
