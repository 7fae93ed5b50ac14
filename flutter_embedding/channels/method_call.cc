#include "flutter_embedding/channels/method_call.h"

#include "flutter_embedding/channels/binary_messenger.h"

struct _FlMethodCall {
  GObject parent_instance;
  FlMethodCodec* codec;
  char* name;
  FlValue* args;
  PendingReply* reply;
};

G_DEFINE_FINAL_TYPE(FlMethodCall, fl_method_call, G_TYPE_OBJECT)

static void fl_method_call_finalize(GObject* object) {
  FlMethodCall* self = FL_METHOD_CALL(object);
  delete self->reply;
  g_free(self->name);
  g_clear_pointer(&self->args, fl_value_unref);
  g_clear_object(&self->codec);
  G_OBJECT_CLASS(fl_method_call_parent_class)->finalize(object);
}

static void fl_method_call_class_init(FlMethodCallClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_method_call_finalize;
}

static void fl_method_call_init(FlMethodCall*) {}

FlMethodCall* method_call_from_message(FlMethodCodec* codec, const char* channel, GBytes* message,
                                       std::unique_ptr<PendingReply> reply) {
  g_autofree gchar* name = nullptr;
  g_autoptr(FlValue) args = nullptr;
  g_autoptr(GError) error = nullptr;
  if (!FL_METHOD_CODEC_GET_CLASS(codec)->decode_method_call(codec, message, &name, &args, &error)) {
    g_warning("Channel %s got a malformed method call: %s", channel, error->message);
    return nullptr;
  }
  auto* self = FL_METHOD_CALL(g_object_new(fl_method_call_get_type(), nullptr));
  self->codec = FL_METHOD_CODEC(g_object_ref(codec));
  self->name = g_steal_pointer(&name);
  self->args = g_steal_pointer(&args);
  self->reply = reply.release();
  return self;
}

const gchar* fl_method_call_get_name(FlMethodCall* self) {
  g_return_val_if_fail(FL_IS_METHOD_CALL(self), nullptr);
  return self->name;
}

FlValue* fl_method_call_get_args(FlMethodCall* self) {
  g_return_val_if_fail(FL_IS_METHOD_CALL(self), nullptr);
  return self->args;
}

gboolean fl_method_call_respond(FlMethodCall* self, FlMethodResponse* response, GError** error) {
  g_return_val_if_fail(FL_IS_METHOD_CALL(self), FALSE);
  g_return_val_if_fail(FL_IS_METHOD_RESPONSE(response), FALSE);
  if (self->reply->used()) {
    g_set_error(error, messenger_error_quark(), MESSENGER_ERROR_ALREADY_ANSWERED,
                "The call of %s has been answered before", self->name);
    return FALSE;
  }
  g_autoptr(GBytes) message =
      FL_METHOD_CODEC_GET_CLASS(self->codec)->encode_response(self->codec, response, error);
  if (message == nullptr) return FALSE;
  if (!self->reply->send(message)) {
    g_set_error(error, messenger_error_quark(), MESSENGER_ERROR_CLOSED,
                "The engine that called %s is gone", self->name);
    return FALSE;
  }
  return TRUE;
}
