#ifndef CORVANA_TESTS_SUPPORT_CHANNEL_CLIENT_H_
#define CORVANA_TESTS_SUPPORT_CHANNEL_CLIENT_H_

#include <flutter_linux/flutter_linux.h>

#include <chrono>
#include <functional>
#include <string>

// An engine without a window, and the user interface's end of its channels. Everything crosses as
// encoded bytes.
class ChannelClient {
 public:
  ChannelClient();
  ~ChannelClient();
  ChannelClient(const ChannelClient&) = delete;
  ChannelClient& operator=(const ChannelClient&) = delete;

  FlBinaryMessenger* messenger() const { return fl_engine_get_binary_messenger(engine_); }

  // Calls a method of "com.corvana.channel/proxy_service" and gives the reply as text:
  // fl_value_to_string of a success, else "not implemented" or "error". `args` may be null.
  std::string call(const char* method, FlValue* args = nullptr) const;

 private:
  FlEngine* engine_;
  FlMethodChannel* channel_;
};

// Runs the main loop until `done` or for at most `limit`; the last answer of `done`.
bool run_main_loop_until(const std::function<bool()>& done, std::chrono::milliseconds limit);

#endif
