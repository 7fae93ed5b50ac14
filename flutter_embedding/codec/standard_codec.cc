#include "flutter_embedding/codec/standard_codec.h"

#include "flutter_embedding/channels/method_response.h"
#include "flutter_embedding/codec/values_as_bytes.h"

namespace {

using Message = std::vector<uint8_t>;

constexpr uint8_t k_success_envelope = 0;
constexpr uint8_t k_error_envelope = 1;

GBytes* to_bytes(const Message& message) { return g_bytes_new(message.data(), message.size()); }

MessageReader reader_of(GBytes* message) {
  size_t size = 0;
  const void* bytes = g_bytes_get_data(message, &size);
  return {static_cast<const uint8_t*>(bytes), size};
}

bool write_optional(Message& message, const FlValue* value, GError** error) {
  return write_value(message, value == nullptr ? value_new(std::monostate()).get() : value, error);
}

GBytes* encode_success(FlMethodSuccessResponse* response, GError** error) {
  Message message = {k_success_envelope};
  return write_value(message, method_success_response_get_result(response), error)
             ? to_bytes(message)
             : nullptr;
}

GBytes* encode_error(FlMethodErrorResponse* response, GError** error) {
  Message message = {k_error_envelope};
  const char* text = method_error_response_get_message(response);
  const ValueRef text_value(text == nullptr ? nullptr : fl_value_new_string(text));
  return write_string(message, method_error_response_get_code(response), error) &&
                 write_optional(message, text_value.get(), error) &&
                 write_optional(message, method_error_response_get_details(response), error)
             ? to_bytes(message)
             : nullptr;
}

FlMethodResponse* decode_success(MessageReader& reader, GError** error) {
  const ValueRef result = read_value(reader, error);
  if (result == nullptr || !expect_end(reader, error)) return nullptr;
  return FL_METHOD_RESPONSE(fl_method_success_response_new(result.get()));
}

FlMethodResponse* decode_error(MessageReader& reader, GError** error) {
  const ValueRef code = read_string(reader, error);
  const ValueRef text = code == nullptr ? nullptr : read_value(reader, error);
  const ValueRef details = text == nullptr ? nullptr : read_value(reader, error);
  if (details == nullptr || !expect_end(reader, error)) return nullptr;
  const auto* message = std::get_if<std::string>(&text->content);
  return FL_METHOD_RESPONSE(
      fl_method_error_response_new(fl_value_get_string(code.get()),
                                   message == nullptr ? nullptr : message->c_str(), details.get()));
}

// Hosts read the name as a C string. A zero byte would cut it off, and another method would be
// called.
ValueRef read_method_name(MessageReader& reader, GError** error) {
  ValueRef name = read_string(reader, error);
  if (name != nullptr && std::get<std::string>(name->content).find('\0') != std::string::npos) {
    g_set_error(error, codec_error_quark(), CODEC_ERROR_ZERO_IN_NAME,
                "The method's name contains a zero byte");
    return nullptr;
  }
  return name;
}

}  // namespace

GQuark codec_error_quark() { return g_quark_from_static_string("codec-error"); }

GBytes* encode_value(const FlValue* value, GError** error) {
  Message message;
  return write_value(message, value, error) ? to_bytes(message) : nullptr;
}

ValueRef decode_value(GBytes* message, GError** error) {
  MessageReader reader = reader_of(message);
  ValueRef value = read_value(reader, error);
  if (value == nullptr || !expect_end(reader, error)) return nullptr;
  return value;
}

GBytes* encode_method_call(const std::string& name, const FlValue* args, GError** error) {
  Message message;
  return write_string(message, name, error) && write_optional(message, args, error)
             ? to_bytes(message)
             : nullptr;
}

bool decode_method_call(GBytes* message, DecodedCall* call, GError** error) {
  MessageReader reader = reader_of(message);
  const ValueRef name = read_method_name(reader, error);
  ValueRef args = name == nullptr ? nullptr : read_value(reader, error);
  if (args == nullptr || !expect_end(reader, error)) return false;
  *call = {fl_value_get_string(name.get()), std::move(args)};
  return true;
}

GBytes* encode_reply(FlMethodResponse* response, GError** error) {
  if (FL_IS_METHOD_SUCCESS_RESPONSE(response)) {
    return encode_success(FL_METHOD_SUCCESS_RESPONSE(response), error);
  }
  if (FL_IS_METHOD_ERROR_RESPONSE(response)) {
    return encode_error(FL_METHOD_ERROR_RESPONSE(response), error);
  }
  return g_bytes_new(nullptr, 0);
}

FlMethodResponse* decode_reply(GBytes* message, GError** error) {
  MessageReader reader = reader_of(message);
  if (reader.size == 0) return FL_METHOD_RESPONSE(fl_method_not_implemented_response_new());
  uint8_t envelope = 0;
  read_byte(reader, &envelope, error);
  switch (envelope) {
    case k_success_envelope:
      return decode_success(reader, error);
    case k_error_envelope:
      return decode_error(reader, error);
    default:
      g_set_error(error, codec_error_quark(), CODEC_ERROR_UNKNOWN_TYPE,
                  "A reply begins with byte %u", envelope);
      return nullptr;
  }
}

// There is only one codec, so channels call the functions above and the codec's objects are empty.
struct _FlStandardMethodCodec {
  FlMethodCodec parent_instance;
};

G_DEFINE_ABSTRACT_TYPE(FlMethodCodec, fl_method_codec, G_TYPE_OBJECT)
G_DEFINE_FINAL_TYPE(FlStandardMethodCodec, fl_standard_method_codec, fl_method_codec_get_type())

static void fl_method_codec_class_init(FlMethodCodecClass*) {}

static void fl_method_codec_init(FlMethodCodec*) {}

static void fl_standard_method_codec_class_init(FlStandardMethodCodecClass*) {}

static void fl_standard_method_codec_init(FlStandardMethodCodec*) {}

FlStandardMethodCodec* fl_standard_method_codec_new() {
  return FL_STANDARD_METHOD_CODEC(g_object_new(fl_standard_method_codec_get_type(), nullptr));
}
