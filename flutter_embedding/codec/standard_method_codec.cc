#include "flutter_embedding/codec/standard_codec.h"

struct _FlStandardMethodCodec {
  FlMethodCodec parent_instance;
};

G_DEFINE_ABSTRACT_TYPE(FlMethodCodec, fl_method_codec, G_TYPE_OBJECT)
G_DEFINE_FINAL_TYPE(FlStandardMethodCodec, fl_standard_method_codec, fl_method_codec_get_type())

static gboolean standard_decode_method_call(FlMethodCodec*, GBytes* message, gchar** name,
                                            FlValue** args, GError** error) {
  DecodedCall call;
  if (!decode_method_call(message, &call, error)) return FALSE;
  *name = g_strdup(call.name.c_str());
  *args = call.args.release();
  return TRUE;
}

static GBytes* standard_encode_response(FlMethodCodec*, FlMethodResponse* response,
                                        GError** error) {
  return encode_reply(response, error);
}

static void fl_method_codec_class_init(FlMethodCodecClass*) {}

static void fl_method_codec_init(FlMethodCodec*) {}

static void fl_standard_method_codec_class_init(FlStandardMethodCodecClass* klass) {
  FL_METHOD_CODEC_CLASS(klass)->decode_method_call = standard_decode_method_call;
  FL_METHOD_CODEC_CLASS(klass)->encode_response = standard_encode_response;
}

static void fl_standard_method_codec_init(FlStandardMethodCodec*) {}

FlStandardMethodCodec* fl_standard_method_codec_new() {
  return FL_STANDARD_METHOD_CODEC(g_object_new(fl_standard_method_codec_get_type(), nullptr));
}
