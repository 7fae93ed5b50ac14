#ifndef CORVANA_TESTS_SUPPORT_CHANNEL_CLIENT_H_
#define CORVANA_TESTS_SUPPORT_CHANNEL_CLIENT_H_

#include <flutter_linux/flutter_linux.h>

#include <chrono>
#include <functional>
#include <string>

#include "flutter_embedding/ui_channel.h"

// An engine without a window, and the user interface's end of its channels. Everything crosses as
// encoded bytes.
class ChannelClient {
 public:
  ChannelClient();
  ~ChannelClient();
  ChannelClient(const ChannelClient&) = delete;
  ChannelClient& operator=(const ChannelClient&) = delete;

  FlBinaryMessenger* messenger() const { return fl_engine_get_binary_messenger(engine_); }

  // Calls a method of "com.corvana.channel/proxy_service". Gives text_of() the reply. `args` may be
  // null.
  std::string call(const char* method, FlValue* args = nullptr) const;

 private:
  FlEngine* engine_;
  FlMethodChannel* channel_;
};

// fl_value_to_string of a success, "code: message" of an error, or "not implemented".
std::string text_of(const UiReply& reply);

// Runs the main loop until `done` or for at most `limit`; the last answer of `done`.
bool run_main_loop_until(const std::function<bool()>& done, std::chrono::milliseconds limit);

#endif
