#include <gtest/gtest.h>

#include "flutter_embedding/channels/binary_messenger.h"
#include "flutter_embedding/engine.h"
#include "flutter_embedding/ui_channel.h"

namespace {

using CallHandler = std::function<void(FlMethodCall*)>;

std::string text_of(const UiReply& reply) {
  if (reply.kind == UiReply::Kind::not_implemented) return "not implemented";
  if (reply.kind == UiReply::Kind::error) return reply.error_code + ": " + reply.error_message;
  g_autofree gchar* value = fl_value_to_string(reply.value);
  return value;
}

// The code of the failure, or -1.
int respond(FlMethodCall* call, gpointer new_response) {
  g_autoptr(FlMethodResponse) response = FL_METHOD_RESPONSE(new_response);
  g_autoptr(GError) error = nullptr;
  return fl_method_call_respond(call, response, &error) ? -1 : error->code;
}

class Channel : public testing::Test {
 protected:
  ~Channel() override {
    g_clear_object(&engine);
    g_object_unref(messenger);
  }

  // Once this returns, only the messenger keeps the channel.
  void handle(CallHandler handler) {
    g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
    g_autoptr(FlMethodChannel) channel =
        fl_method_channel_new(messenger, "m", FL_METHOD_CODEC(codec));
    const auto run = [](FlMethodChannel*, FlMethodCall* call, gpointer data) {
      (*static_cast<CallHandler*>(data))(call);
    };
    const auto destroy = [](gpointer data) { delete static_cast<CallHandler*>(data); };
    fl_method_channel_set_method_call_handler(channel, run, new CallHandler(std::move(handler)),
                                              destroy);
  }

  // What the reply says, or "none" as long as there is none.
  auto invoke(const char* method, FlValue* args = nullptr) {
    auto text = std::make_shared<std::string>("none");
    ui_invoke_method(messenger, "m", method, args, [text](auto& reply) { *text = text_of(reply); });
    return text;
  }

  static void run_loop() {
    while (g_main_context_iteration(nullptr, FALSE)) continue;
  }

  std::shared_ptr<FlDartProject> project{fl_dart_project_new(), g_object_unref};
  FlEngine* engine = fl_engine_new(project.get());
  FlBinaryMessenger* messenger =
      FL_BINARY_MESSENGER(g_object_ref(fl_engine_get_binary_messenger(engine)));
};

TEST_F(Channel, EveryKindOfAnswerArrivesLater) {
  g_autoptr(FlValue) deep = fl_value_new_list();
  for (int depth = 0; depth < 200; ++depth) {
    FlValue* inner = std::exchange(deep, fl_value_new_list());
    fl_value_append_take(deep, inner);
  }
  g_autoptr(FlValue) args = fl_value_new_list();
  int second_answer = -1;
  handle([&](FlMethodCall* call) {
    const std::string name = fl_method_call_get_name(call);
    if (name == "fail") respond(call, fl_method_error_response_new("c", "m", nullptr));
    if (name != "echo") return;
    EXPECT_NE(respond(call, fl_method_success_response_new(deep)), -1);
    EXPECT_EQ(respond(call, fl_method_success_response_new(fl_method_call_get_args(call))), -1);
    second_answer = respond(call, fl_method_not_implemented_response_new());
  });
  const std::tuple<const char*, FlValue*, const char*> rows[] = {
      {"echo", args, "[]"},
      {"fail", nullptr, "c: m"},
      {"forgotten", nullptr, "not implemented"},
      {"echo", deep, "codec: The value is nested deeper than 128 levels"}};
  for (const auto& [method, sent, expected] : rows) {
    const auto reply = invoke(method, sent);
    EXPECT_EQ(*reply, "none");
    run_loop();
    EXPECT_EQ(*reply, expected) << method;
  }
  EXPECT_EQ(second_answer, MESSENGER_ERROR_ALREADY_ANSWERED);
}

TEST_F(Channel, HandlerAndEngineEndWithCallsUnderWay) {
  auto handler_token = std::make_shared<int>(), reply_token = std::make_shared<int>();
  const std::weak_ptr<int> handler_lives = handler_token, replies_live = reply_token;
  FlMethodCall* kept = nullptr;
  handle([&, token = std::move(handler_token)](FlMethodCall* call) {
    kept = FL_METHOD_CALL(g_object_ref(call));
    handle([token](FlMethodCall*) { ADD_FAILURE(); });
    g_clear_object(&engine);
    EXPECT_FALSE(handler_lives.expired()) << "destroyed while it runs";
  });
  for (const char* fate : {"kept", "never delivered"}) {
    ui_invoke_method(messenger, "m", fate, nullptr, [reply_token](auto&) { ADD_FAILURE(); });
  }
  reply_token.reset();
  run_loop();
  EXPECT_TRUE(handler_lives.expired() && replies_live.expired());
  EXPECT_EQ(respond(kept, fl_method_success_response_new(nullptr)), MESSENGER_ERROR_CLOSED);
  g_object_unref(kept);
}

}  // namespace
