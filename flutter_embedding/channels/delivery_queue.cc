#include "flutter_embedding/channels/delivery_queue.h"

#include <utility>

#include "flutter_embedding/guarded.h"

void DeliveryQueue::push(Delivery delivery) {
  pending_.push_back(std::move(delivery));
  if (source_id_ == 0) wait_for_main_loop();
}

void DeliveryQueue::clear() {
  if (source_id_ != 0) g_source_remove(std::exchange(source_id_, 0));
  // What goes here may push again; that must find a queue in order.
  const std::deque<Delivery> dropped = std::exchange(pending_, {});
}

void DeliveryQueue::wait_for_main_loop() {
  source_id_ = g_idle_add_full(G_PRIORITY_DEFAULT, run_next, this, nullptr);
}

gboolean DeliveryQueue::run_next(gpointer data) {
  auto* queue = static_cast<DeliveryQueue*>(data);
  const Delivery delivery = std::move(queue->pending_.front());
  queue->pending_.pop_front();
  queue->source_id_ = 0;
  // The next turn is asked for first: the delivery may run a main loop of its own, for a dialog,
  // and it may delete the queue.
  if (!queue->pending_.empty()) queue->wait_for_main_loop();
  run_guarded(delivery);
  return G_SOURCE_REMOVE;
}
