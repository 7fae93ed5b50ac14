#include "flutter_embedding/ui_channel.h"

#include <utility>

#include "flutter_embedding/channels/messenger.h"
#include "flutter_embedding/channels/method_response.h"
#include "flutter_embedding/codec/standard_codec.h"

static UiReply codec_failure(const GError* error) {
  return {UiReply::Kind::error, nullptr, "codec", error->message};
}

static UiReply error_reply(FlMethodErrorResponse* response) {
  const char* message = method_error_response_get_message(response);
  return {UiReply::Kind::error, nullptr, method_error_response_get_code(response),
          message == nullptr ? "" : message};
}

// The reply's value is borrowed from the response.
static UiReply reply_from(FlMethodResponse* response) {
  if (FL_IS_METHOD_SUCCESS_RESPONSE(response)) {
    FlValue* result = method_success_response_get_result(FL_METHOD_SUCCESS_RESPONSE(response));
    return {UiReply::Kind::success, result, "", ""};
  }
  if (FL_IS_METHOD_ERROR_RESPONSE(response)) return error_reply(FL_METHOD_ERROR_RESPONSE(response));
  return {};
}

static void decode_and_pass_on(GBytes* bytes, const std::function<void(const UiReply&)>& receiver) {
  if (bytes == nullptr) return receiver({});
  g_autoptr(GError) error = nullptr;
  g_autoptr(FlMethodResponse) response = decode_reply(bytes, &error);
  receiver(response == nullptr ? codec_failure(error) : reply_from(response));
}

static void warn_about_error(const std::string& channel, const char* what, const UiReply& reply) {
  g_warning("Channel %s: %s: %s: %s", channel.c_str(), what, reply.error_code.c_str(),
            reply.error_message.c_str());
}

void ui_invoke_method(FlBinaryMessenger* messenger, const char* channel, const char* method,
                      FlValue* args, std::function<void(const UiReply&)> on_reply) {
  g_autoptr(GError) error = nullptr;
  g_autoptr(GBytes) message = encode_method_call(method, args, &error);
  if (message == nullptr) {
    return run_later(
        0, messenger_life(messenger),
        [on_reply = std::move(on_reply), failure = codec_failure(error)] { on_reply(failure); });
  }
  messenger_send_to_host(
      messenger, channel, message,
      [on_reply = std::move(on_reply)](GBytes* reply) { decode_and_pass_on(reply, on_reply); });
}

void ui_listen(FlBinaryMessenger* messenger, const char* channel,
               std::function<void(FlValue* event)> on_event) {
  const std::function<void(const UiReply&)> pass_on =
      [name = std::string(channel), on_event = std::move(on_event)](const UiReply& event) {
        if (event.kind == UiReply::Kind::success) {
          on_event(event.value);
        } else {
          warn_about_error(name, "bad event", event);
        }
      };
  // The messenger owns the receiver, so the pointer stays valid.
  const auto receive = [messenger, name = std::string(channel), pass_on](GBytes* message) {
    if (g_bytes_get_size(message) > 0) return decode_and_pass_on(message, pass_on);
    messenger_set_receiver(messenger, name.c_str(), nullptr);
  };
  messenger_set_receiver(messenger, channel, receive);
  ui_invoke_method(messenger, channel, "listen", nullptr,
                   [name = std::string(channel)](const UiReply& reply) {
                     if (reply.kind == UiReply::Kind::error) {
                       warn_about_error(name, "listen refused", reply);
                     }
                   });
}
