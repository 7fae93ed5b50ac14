#include "flutter_embedding/guarded.h"

#include <glib.h>

#include <exception>

void run_guarded(const std::function<void()>& task) noexcept {
  try {
    task();
  } catch (const std::exception& failure) {
    g_critical("A handler threw an exception: %s", failure.what());
  } catch (...) {
    g_critical("A handler threw something that is no exception");
  }
}
