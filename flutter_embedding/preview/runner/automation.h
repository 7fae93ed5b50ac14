#ifndef CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_AUTOMATION_H_
#define CORVANA_FLUTTER_EMBEDDING_PREVIEW_RUNNER_AUTOMATION_H_

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <string>

#include "flutter_embedding/later.h"
#include "flutter_embedding/preview/runner/preview_options.h"
#include "flutter_embedding/preview/runner/service_client.h"

namespace preview {

// Carries out the options: connects, waits for the outcome, takes the picture, disconnects, closes.
// Main thread only.
struct Automation;

struct AutomationActions {
  std::function<bool()> connect;  // false: it didn't begin, so no outcome will come
  std::function<void()> disconnect;
  std::function<bool()> is_drawn;  // the page's content has arrived and no animation runs
  std::function<void()> take_screenshot;
  std::function<void()> close;
};

std::shared_ptr<Automation> automation_new(const Options& options, const Life& life,
                                           AutomationActions actions);

// To be called at every change of the status.
void automation_notice(Automation* automation, const ServiceStatus& status);

// Writes what the widget shows, on its window's background, to a PNG file (name in the file
// system's encoding). The window need not be on a screen. Returns why it couldn't, or an empty
// string. Main thread only.
std::string write_screenshot(GtkWidget* widget, const std::string& file);

}  // namespace preview

#endif
