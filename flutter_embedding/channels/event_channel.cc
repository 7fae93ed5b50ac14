#include "flutter_embedding/channels/messenger.h"
#include "flutter_embedding/channels/method_call.h"
#include "flutter_embedding/channels/references.h"
#include "flutter_embedding/codec/standard_codec.h"

struct _FlEventChannel {
  GObject parent_instance;
  FlBinaryMessenger* messenger;
  char* name;
};

G_DEFINE_FINAL_TYPE(FlEventChannel, fl_event_channel, G_TYPE_OBJECT)

static void fl_event_channel_finalize(GObject* object) {
  FlEventChannel* self = FL_EVENT_CHANNEL(object);
  g_clear_object(&self->messenger);
  g_free(self->name);
  G_OBJECT_CLASS(fl_event_channel_parent_class)->finalize(object);
}

static void fl_event_channel_class_init(FlEventChannelClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_event_channel_finalize;
}

static void fl_event_channel_init(FlEventChannel*) {}

FlEventChannel* fl_event_channel_new(FlBinaryMessenger* messenger, const gchar* name,
                                     FlMethodCodec* codec) {
  g_return_val_if_fail(FL_IS_BINARY_MESSENGER(messenger), nullptr);
  g_return_val_if_fail(name != nullptr, nullptr);
  g_return_val_if_fail(FL_IS_METHOD_CODEC(codec), nullptr);
  auto* self = FL_EVENT_CHANNEL(g_object_new(fl_event_channel_get_type(), nullptr));
  self->messenger = FL_BINARY_MESSENGER(g_object_ref(messenger));
  self->name = g_strdup(name);
  return self;
}

namespace {

struct StreamHandlers {
  std::shared_ptr<FlEventChannel> channel;  // keeps it alive while the handlers are installed
  FlEventChannelHandler listen;
  FlEventChannelHandler cancel;
  std::shared_ptr<void> user_data;
};

FlMethodResponse* run_stream_handler(const StreamHandlers& handlers, FlEventChannelHandler handler,
                                     FlValue* args) {
  FlMethodErrorResponse* refusal =
      handler == nullptr ? nullptr
                         : handler(handlers.channel.get(), args, handlers.user_data.get());
  return refusal == nullptr ? FL_METHOD_RESPONSE(fl_method_success_response_new(nullptr))
                            : FL_METHOD_RESPONSE(refusal);
}

FlMethodResponse* response_to(const StreamHandlers& handlers, FlMethodCall* call) {
  const char* name = fl_method_call_get_name(call);
  FlValue* args = fl_method_call_get_args(call);
  if (g_str_equal(name, "listen")) return run_stream_handler(handlers, handlers.listen, args);
  if (g_str_equal(name, "cancel")) return run_stream_handler(handlers, handlers.cancel, args);
  return FL_METHOD_RESPONSE(fl_method_not_implemented_response_new());
}

void answer(const StreamHandlers& handlers, GBytes* message, std::unique_ptr<PendingReply> reply) {
  FlEventChannel* channel = handlers.channel.get();
  g_autoptr(FlMethodCall) call = method_call_from_message(channel->name, message, std::move(reply));
  if (call == nullptr) return;
  g_autoptr(FlMethodResponse) response = response_to(handlers, call);
  g_autoptr(GError) error = nullptr;
  if (!fl_method_call_respond(call, response, &error)) {
    g_debug("Channel %s couldn't answer: %s", channel->name, error->message);
  }
}

}  // namespace

void fl_event_channel_set_stream_handlers(FlEventChannel* self, FlEventChannelHandler listen,
                                          FlEventChannelHandler cancel, gpointer user_data,
                                          GDestroyNotify destroy) {
  g_return_if_fail(FL_IS_EVENT_CHANNEL(self));
  const StreamHandlers handlers = {share_object(self), listen, cancel,
                                   share_user_data(user_data, destroy)};
  if (listen == nullptr && cancel == nullptr) {
    messenger_set_handler(self->messenger, self->name, nullptr);
    return;
  }
  messenger_set_handler(self->messenger, self->name,
                        [handlers](GBytes* message, std::unique_ptr<PendingReply> reply) {
                          answer(handlers, message, std::move(reply));
                        });
}

gboolean fl_event_channel_send(FlEventChannel* self, FlValue* event, GCancellable* cancellable,
                               GError** error) {
  g_return_val_if_fail(FL_IS_EVENT_CHANNEL(self), FALSE);
  g_return_val_if_fail(event != nullptr, FALSE);
  if (g_cancellable_set_error_if_cancelled(cancellable, error)) return FALSE;
  g_autoptr(FlMethodSuccessResponse) response = fl_method_success_response_new(event);
  g_autoptr(GBytes) message = encode_reply(FL_METHOD_RESPONSE(response), error);
  return message != nullptr && messenger_send_to_ui(self->messenger, self->name, message, error);
}
