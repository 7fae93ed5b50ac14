#include "flutter_embedding/channels/messenger.h"

#include <map>
#include <new>
#include <string>
#include <utility>

#include "flutter_embedding/channels/references.h"

namespace {

// Functions by channel. Shared, so that one that is running outlives its removal from the table.
template <typename Function>
using FunctionTable = std::map<std::string, std::shared_ptr<const Function>>;

struct Wire {
  FunctionTable<MessageHandler> handlers;    // of the host
  FunctionTable<MessageReceiver> receivers;  // of the user interface
};

template <typename Function>
void put_function(FunctionTable<Function>& table, const char* channel, Function function) {
  std::shared_ptr<const Function> replacement;
  if (function != nullptr) replacement = std::make_shared<const Function>(std::move(function));
  // Destroying the earlier function may change the table again, so it comes last.
  const auto replaced = std::exchange(table[channel], std::move(replacement));
}

template <typename Function>
std::shared_ptr<const Function> find_function(const FunctionTable<Function>& table,
                                              const std::string& channel) {
  const auto found = table.find(channel);
  return found == table.end() ? nullptr : found->second;
}

std::unique_ptr<PendingReply> pending_reply_for(const Life& life, const ReplyCallback& on_reply) {
  return std::make_unique<PendingReply>([life, on_reply](GBytes* reply) {
    if (life.expired()) return false;
    run_later(0, life, [on_reply, bytes = share_bytes(reply)] {
      if (on_reply != nullptr) on_reply(bytes.get());
    });
    return true;
  });
}

}  // namespace

GQuark messenger_error_quark() { return g_quark_from_static_string("messenger-error"); }

struct _FlBinaryMessengerInterface {
  GTypeInterface parent_interface;
};

G_DEFINE_INTERFACE(FlBinaryMessenger, fl_binary_messenger, G_TYPE_OBJECT)

static void fl_binary_messenger_default_init(FlBinaryMessengerInterface*) {}

// The only implementation of FlBinaryMessenger.
G_DECLARE_FINAL_TYPE(FlEngineMessenger, fl_engine_messenger, FL, ENGINE_MESSENGER, GObject)

struct _FlEngineMessenger {
  GObject parent_instance;
  std::shared_ptr<Wire> wire;  // null once the messenger is closed
};

G_DEFINE_FINAL_TYPE_WITH_CODE(FlEngineMessenger, fl_engine_messenger, G_TYPE_OBJECT,
                              G_IMPLEMENT_INTERFACE(fl_binary_messenger_get_type(), nullptr))

static void fl_engine_messenger_finalize(GObject* object) {
  FL_ENGINE_MESSENGER(object)->wire.~shared_ptr();
  G_OBJECT_CLASS(fl_engine_messenger_parent_class)->finalize(object);
}

static void fl_engine_messenger_class_init(FlEngineMessengerClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_engine_messenger_finalize;
}

static void fl_engine_messenger_init(FlEngineMessenger* self) {
  new (&self->wire) std::shared_ptr<Wire>(std::make_shared<Wire>());
}

static std::shared_ptr<Wire>& wire_of(FlBinaryMessenger* messenger) {
  return FL_ENGINE_MESSENGER(messenger)->wire;
}

FlBinaryMessenger* messenger_new() {
  return FL_BINARY_MESSENGER(g_object_new(fl_engine_messenger_get_type(), nullptr));
}

void messenger_close(FlBinaryMessenger* messenger) {
  // The handlers' destruction may call back into the messenger, which must be closed by then.
  const std::shared_ptr<Wire> closed = std::exchange(wire_of(messenger), nullptr);
}

void messenger_set_handler(FlBinaryMessenger* messenger, const char* channel,
                           MessageHandler handler) {
  Wire* wire = wire_of(messenger).get();
  if (wire != nullptr) put_function(wire->handlers, channel, std::move(handler));
}

void messenger_set_receiver(FlBinaryMessenger* messenger, const char* channel,
                            MessageReceiver receiver) {
  Wire* wire = wire_of(messenger).get();
  if (wire != nullptr) put_function(wire->receivers, channel, std::move(receiver));
}

bool messenger_send_to_ui(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                          GError** error) {
  const std::shared_ptr<Wire>& wire = wire_of(messenger);
  if (wire == nullptr) {
    g_set_error(error, messenger_error_quark(), MESSENGER_ERROR_CLOSED,
                "The engine behind channel %s is gone", channel);
    return false;
  }
  run_later(0, wire,
            [wire = wire.get(), name = std::string(channel), bytes = share_bytes(message)] {
              if (const auto receiver = find_function(wire->receivers, name)) {
                (*receiver)(bytes.get());
              }
            });
  return true;
}

void messenger_send_to_host(FlBinaryMessenger* messenger, const char* channel, GBytes* message,
                            ReplyCallback on_reply) {
  const std::shared_ptr<Wire>& wire = wire_of(messenger);
  if (wire == nullptr) return;
  run_later(0, wire,
            [wire = wire.get(), life = Life(wire), name = std::string(channel),
             bytes = share_bytes(message), on_reply = std::move(on_reply)] {
              auto reply = pending_reply_for(life, on_reply);
              if (const auto handler = find_function(wire->handlers, name)) {
                (*handler)(bytes.get(), std::move(reply));
              }
            });
}

Life messenger_life(FlBinaryMessenger* messenger) { return wire_of(messenger); }
