#include "flutter_embedding/channels/messenger.h"
#include "flutter_embedding/channels/method_call.h"
#include "flutter_embedding/channels/references.h"

struct _FlMethodChannel {
  GObject parent_instance;
  FlBinaryMessenger* messenger;
  char* name;
};

G_DEFINE_FINAL_TYPE(FlMethodChannel, fl_method_channel, G_TYPE_OBJECT)

static void fl_method_channel_finalize(GObject* object) {
  FlMethodChannel* self = FL_METHOD_CHANNEL(object);
  g_clear_object(&self->messenger);
  g_free(self->name);
  G_OBJECT_CLASS(fl_method_channel_parent_class)->finalize(object);
}

static void fl_method_channel_class_init(FlMethodChannelClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_method_channel_finalize;
}

static void fl_method_channel_init(FlMethodChannel*) {}

FlMethodChannel* fl_method_channel_new(FlBinaryMessenger* messenger, const gchar* name,
                                       FlMethodCodec* codec) {
  g_return_val_if_fail(FL_IS_BINARY_MESSENGER(messenger), nullptr);
  g_return_val_if_fail(name != nullptr, nullptr);
  g_return_val_if_fail(FL_IS_METHOD_CODEC(codec), nullptr);
  auto* self = FL_METHOD_CHANNEL(g_object_new(fl_method_channel_get_type(), nullptr));
  self->messenger = FL_BINARY_MESSENGER(g_object_ref(messenger));
  self->name = g_strdup(name);
  return self;
}

void fl_method_channel_set_method_call_handler(FlMethodChannel* self,
                                               FlMethodChannelMethodCallHandler handler,
                                               gpointer user_data, GDestroyNotify destroy) {
  g_return_if_fail(FL_IS_METHOD_CHANNEL(self));
  const std::shared_ptr<void> shared_data = share_user_data(user_data, destroy);
  if (handler == nullptr) {
    messenger_set_handler(self->messenger, self->name, nullptr);
    return;
  }
  // The handler's reference keeps the channel alive.
  messenger_set_handler(self->messenger, self->name,
                        [channel = share_object(self), handler, shared_data](
                            GBytes* message, std::unique_ptr<PendingReply> reply) {
                          g_autoptr(FlMethodCall) call =
                              method_call_from_message(channel->name, message, std::move(reply));
                          if (call != nullptr) {
                            handler(channel.get(), call, shared_data.get());
                          }
                        });
}
