#include "flutter_embedding/preview/guarded.h"

#include <glib.h>

#include <exception>

namespace preview {

void run_guarded(const std::function<void()>& task) noexcept {
  try {
    task();
  } catch (const std::exception& failure) {
    g_critical("The window threw an exception: %s", failure.what());
  } catch (...) {
    g_critical("The window threw something that is no exception");
  }
}

}  // namespace preview
