#include "support/channel_client.h"

#include <optional>

#include "flutter_embedding/engine.h"
#include "proxy_service/method_channel.h"

static const char k_channel[] = "com.corvana.channel/proxy_service";

ChannelClient::ChannelClient() {
  engine_ = engine_new();
  g_autoptr(FlStandardMethodCodec) codec = fl_standard_method_codec_new();
  channel_ = fl_method_channel_new(messenger(), k_channel, FL_METHOD_CODEC(codec));
  fl_method_channel_set_method_call_handler(channel_, method_call_handler, nullptr, nullptr);
}

ChannelClient::~ChannelClient() {
  g_object_unref(channel_);
  g_object_unref(engine_);
}

std::string text_of(const UiReply& reply) {
  if (reply.kind == UiReply::Kind::not_implemented) return "not implemented";
  if (reply.kind == UiReply::Kind::error) return reply.error_code + ": " + reply.error_message;
  g_autofree gchar* text = fl_value_to_string(reply.value);
  return text;
}

std::string ChannelClient::call(const char* method, FlValue* args) const {
  std::optional<std::string> text;
  ui_invoke_method(messenger(), k_channel, method, args,
                   [&text](const UiReply& reply) { text = text_of(reply); });
  run_main_loop_until([&text] { return text.has_value(); }, std::chrono::seconds(60));
  return text.value_or("no reply");
}

bool run_main_loop_until(const std::function<bool()>& done, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  const guint ticks = g_timeout_add(
      5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
  while (!done() && std::chrono::steady_clock::now() < deadline) {
    g_main_context_iteration(nullptr, TRUE);
  }
  g_source_remove(ticks);
  return done();
}
