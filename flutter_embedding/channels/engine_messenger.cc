#include "flutter_embedding/channels/engine_messenger.h"

#include <cstdint>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "flutter_embedding/channels/delivery_queue.h"
#include "flutter_embedding/channels/references.h"

namespace {

// Shared, so that a function in use outlives its removal from the table.
template <typename Function>
using FunctionTable = std::map<std::string, std::shared_ptr<const Function>>;

struct Wire {
  bool open = true;
  FunctionTable<MessageHandler> handlers;    // of the host, by channel
  FunctionTable<MessageReceiver> receivers;  // of the user interface, by channel
  std::map<uint64_t, ReplyCallback> awaited_replies;
  uint64_t last_message_id = 0;
  DeliveryQueue queue;  // its deliveries use the wire, and go with it
};

template <typename Function>
void put_function(FunctionTable<Function>& table, const char* channel, Function function) {
  // Destroying a function may call back into the table, so that comes last.
  std::shared_ptr<const Function> replaced;
  if (function == nullptr) {
    const auto found = table.find(channel);
    if (found != table.end()) {
      replaced = std::move(found->second);
      table.erase(found);
    }
    return;
  }
  replaced = std::exchange(table[channel], std::make_shared<const Function>(std::move(function)));
}

template <typename Function>
std::shared_ptr<const Function> find_function(const FunctionTable<Function>& table,
                                              const std::string& channel) {
  const auto found = table.find(channel);
  return found == table.end() ? nullptr : found->second;
}

void deliver_reply(Wire& wire, uint64_t message_id, GBytes* reply) {
  const auto found = wire.awaited_replies.find(message_id);
  const ReplyCallback on_reply = std::move(found->second);
  wire.awaited_replies.erase(found);
  if (on_reply != nullptr) on_reply(reply);
}

bool send_reply(Wire& wire, uint64_t message_id, GBytes* reply) {
  if (!wire.open) return false;
  wire.queue.push([&wire, message_id, bytes = share_bytes(reply)] {
    deliver_reply(wire, message_id, bytes.get());
  });
  return true;
}

std::unique_ptr<PendingReply> pending_reply_for(const std::shared_ptr<Wire>& wire,
                                                uint64_t message_id) {
  return std::make_unique<PendingReply>(
      [weak_wire = std::weak_ptr<Wire>(wire), message_id](GBytes* reply) {
        const std::shared_ptr<Wire> alive = weak_wire.lock();
        return alive != nullptr && send_reply(*alive, message_id, reply);
      });
}

}  // namespace

struct _FlEngineMessenger {
  GObject parent_instance;
  std::shared_ptr<Wire> wire;
};

static void fl_engine_messenger_implement(FlBinaryMessengerInterface* messenger_interface);

G_DEFINE_FINAL_TYPE_WITH_CODE(FlEngineMessenger, fl_engine_messenger, G_TYPE_OBJECT,
                              G_IMPLEMENT_INTERFACE(fl_binary_messenger_get_type(),
                                                    fl_engine_messenger_implement))

static void set_message_handler(FlBinaryMessenger* messenger, const char* channel,
                                MessageHandler handler) {
  Wire& wire = *FL_ENGINE_MESSENGER(messenger)->wire;
  if (wire.open) put_function(wire.handlers, channel, std::move(handler));
}

static bool send_message(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                         GError** error) {
  Wire& wire = *FL_ENGINE_MESSENGER(messenger)->wire;
  if (!wire.open) {
    g_set_error(error, messenger_error_quark(), MESSENGER_ERROR_CLOSED,
                "The engine behind channel %s is gone", channel);
    return false;
  }
  wire.queue.push([&wire, name = std::string(channel), bytes = share_bytes(message)] {
    if (const auto receiver = find_function(wire.receivers, name)) (*receiver)(bytes.get());
  });
  return true;
}

static void fl_engine_messenger_implement(FlBinaryMessengerInterface* messenger_interface) {
  messenger_interface->set_message_handler = set_message_handler;
  messenger_interface->send_message = send_message;
}

static void fl_engine_messenger_finalize(GObject* object) {
  fl_engine_messenger_close(FL_ENGINE_MESSENGER(object));
  FL_ENGINE_MESSENGER(object)->wire.~shared_ptr();
  G_OBJECT_CLASS(fl_engine_messenger_parent_class)->finalize(object);
}

static void fl_engine_messenger_class_init(FlEngineMessengerClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_engine_messenger_finalize;
}

static void fl_engine_messenger_init(FlEngineMessenger* self) {
  new (&self->wire) std::shared_ptr<Wire>(std::make_shared<Wire>());
}

FlEngineMessenger* fl_engine_messenger_new() {
  return FL_ENGINE_MESSENGER(g_object_new(fl_engine_messenger_get_type(), nullptr));
}

void fl_engine_messenger_close(FlEngineMessenger* self) {
  const std::shared_ptr<Wire> wire = self->wire;
  wire->open = false;
  wire->queue.clear();
  // Taken out of the wire first: what goes here may call back into it.
  const auto handlers = std::exchange(wire->handlers, {});
  const auto receivers = std::exchange(wire->receivers, {});
  const auto awaited_replies = std::exchange(wire->awaited_replies, {});
}

void fl_engine_messenger_send_to_host(FlEngineMessenger* self, const char* channel, GBytes* message,
                                      ReplyCallback on_reply) {
  const std::shared_ptr<Wire>& wire = self->wire;
  if (!wire->open) return;
  const uint64_t id = ++wire->last_message_id;
  wire->awaited_replies.emplace(id, std::move(on_reply));
  wire->queue.push([weak_wire = std::weak_ptr<Wire>(wire), id, name = std::string(channel),
                    bytes = share_bytes(message)] {
    const std::shared_ptr<Wire> alive = weak_wire.lock();
    auto reply = pending_reply_for(alive, id);
    if (const auto handler = find_function(alive->handlers, name)) {
      (*handler)(bytes.get(), std::move(reply));
    }
  });
}

void fl_engine_messenger_set_receiver(FlEngineMessenger* self, const char* channel,
                                      MessageReceiver receiver) {
  if (self->wire->open) put_function(self->wire->receivers, channel, std::move(receiver));
}

void fl_engine_messenger_run_later(FlEngineMessenger* self, std::function<void()> action) {
  if (self->wire->open) self->wire->queue.push(std::move(action));
}
