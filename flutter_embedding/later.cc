#include "flutter_embedding/later.h"

#include <glib.h>

#include <utility>

#include "flutter_embedding/guarded.h"

namespace {

struct Delayed {
  Life life;
  std::function<void()> task;
};

gboolean run_delayed(gpointer data) {
  const auto* delayed = static_cast<const Delayed*>(data);
  if (!delayed->life.expired()) run_guarded(delayed->task);
  return G_SOURCE_REMOVE;
}

void free_delayed(gpointer data) { delete static_cast<Delayed*>(data); }

}  // namespace

void run_later(unsigned milliseconds, const Life& life, std::function<void()> task) {
  auto* delayed = new Delayed{life, std::move(task)};
  // Whole seconds let the kernel wake the process together with others.
  if (milliseconds >= 1000) {
    g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, milliseconds / 1000, run_delayed, delayed,
                               free_delayed);
  } else {
    g_timeout_add_full(G_PRIORITY_DEFAULT, milliseconds, run_delayed, delayed, free_delayed);
  }
}

void run_when_idle(const Life& life, std::function<void()> task) {
  g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, run_delayed, new Delayed{life, std::move(task)},
                  free_delayed);
}
