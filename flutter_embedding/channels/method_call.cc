#include "flutter_embedding/channels/method_call.h"

#include "flutter_embedding/channels/messenger.h"
#include "flutter_embedding/codec/standard_codec.h"

struct _FlMethodCall {
  GObject parent_instance;
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
  G_OBJECT_CLASS(fl_method_call_parent_class)->finalize(object);
}

static void fl_method_call_class_init(FlMethodCallClass* klass) {
  G_OBJECT_CLASS(klass)->finalize = fl_method_call_finalize;
}

static void fl_method_call_init(FlMethodCall*) {}

FlMethodCall* method_call_from_message(const char* channel, GBytes* message,
                                       std::unique_ptr<PendingReply> reply) {
  DecodedCall decoded;
  g_autoptr(GError) error = nullptr;
  if (!decode_method_call(message, &decoded, &error)) {
    g_warning("Channel %s got a malformed method call: %s", channel, error->message);
    return nullptr;
  }
  auto* self = FL_METHOD_CALL(g_object_new(fl_method_call_get_type(), nullptr));
  self->name = g_strdup(decoded.name.c_str());
  self->args = decoded.args.release();
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
  g_autoptr(GBytes) message = encode_reply(response, error);
  if (message == nullptr) return FALSE;
  if (!self->reply->send(message)) {
    g_set_error(error, messenger_error_quark(), MESSENGER_ERROR_CLOSED,
                "The engine that called %s is gone", self->name);
    return FALSE;
  }
  return TRUE;
}
