// Puts off deliveries to the main loop: in order, at the default priority, one a turn, so that
// neither end of a channel ever runs inside a call of the other.

#ifndef CORVANA_FLUTTER_EMBEDDING_CHANNELS_DELIVERY_QUEUE_H_
#define CORVANA_FLUTTER_EMBEDDING_CHANNELS_DELIVERY_QUEUE_H_

#include <glib.h>

#include <deque>
#include <functional>

// Main thread only. A delivery may push, clear or even delete the queue. One that throws is
// reported as a GLib critical.
class DeliveryQueue {
 public:
  using Delivery = std::function<void()>;

  DeliveryQueue() = default;
  DeliveryQueue(const DeliveryQueue&) = delete;
  DeliveryQueue& operator=(const DeliveryQueue&) = delete;
  ~DeliveryQueue() { clear(); }

  void push(Delivery delivery);

  // Drops what is pending without running it.
  void clear();

 private:
  static gboolean run_next(gpointer queue);
  void wait_for_main_loop();

  std::deque<Delivery> pending_;
  guint source_id_ = 0;
};

#endif
