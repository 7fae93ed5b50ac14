#include <gtest/gtest.h>

#include "flutter_embedding/channels/messenger.h"
#include "support/channel_client.h"

// The code of the failure, or -1.
static int respond(FlMethodCall* call, gpointer new_response) {
  g_autoptr(FlMethodResponse) response = FL_METHOD_RESPONSE(new_response);
  g_autoptr(GError) error = nullptr;
  return fl_method_call_respond(call, response, &error) ? -1 : error->code;
}

// Too deep for a message.
static FlValue* nested_lists() {
  FlValue* list = fl_value_new_list();
  for (int depth = 0; depth < 200; ++depth) {
    FlValue* const inner = std::exchange(list, fl_value_new_list());
    fl_value_append_take(list, inner);
  }
  return list;
}

static void answer(FlMethodChannel*, FlMethodCall* call, gpointer) {
  const std::string name = fl_method_call_get_name(call);
  if (name == "fail") respond(call, fl_method_error_response_new("c", "m", nullptr));
  if (name != "echo") return;
  g_autoptr(FlValue) too_deep = nested_lists();
  EXPECT_NE(respond(call, fl_method_success_response_new(too_deep)), -1);
  EXPECT_EQ(respond(call, fl_method_success_response_new(fl_method_call_get_args(call))), -1);
  EXPECT_EQ(respond(call, fl_method_not_implemented_response_new()),
            MESSENGER_ERROR_ALREADY_ANSWERED);
}

TEST(Channel, EveryKindOfAnswerArrivesLater) {
  const ChannelClient client;
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  g_autoptr(FlMethodChannel) channel =
      fl_method_channel_new(client.messenger(), "m", FL_METHOD_CODEC(codec));
  fl_method_channel_set_method_call_handler(channel, answer, nullptr, nullptr);
  g_autoptr(FlValue) args = fl_value_new_list();
  g_autoptr(FlValue) too_deep = nested_lists();
  const std::tuple<const char*, FlValue*, const char*> rows[] = {
      {"echo", args, "[]"},
      {"fail", nullptr, "c: m"},
      {"forgotten", nullptr, "not implemented"},
      {"echo", too_deep, "codec: The value is nested deeper than 128 levels"}};
  for (const auto& [method, sent, expected] : rows) {
    std::string text = "none";
    ui_invoke_method(client.messenger(), "m", method, sent,
                     [&text](const UiReply& reply) { text = text_of(reply); });
    EXPECT_EQ(text, "none");
    while (g_main_context_iteration(nullptr, FALSE)) continue;
    EXPECT_EQ(text, expected) << method;
  }
}
