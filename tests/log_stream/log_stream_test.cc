#include "log_stream/log_stream.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/core_paths.h"
#include "log_stream/log_text.h"
#include "support/channel_client.h"
#include "support/temporary_home.h"

using namespace std::chrono_literals;
static const char k_channel[] = "com.corvana.channel/log_stream";

class LogStream : public testing::Test {
 protected:
  LogStream() : log_(runtime_log_path()) { open_log_stream(client_.messenger()); }

  void listen() {
    ui_listen(client_.messenger(), k_channel,
              [this](FlValue* event) { events_.emplace_back(fl_value_get_string(event)); });
  }

  // Waits for `count` events, for at most `limit`, and takes those that came.
  std::vector<std::string> next_events(size_t count, std::chrono::milliseconds limit = 3000ms) {
    run_main_loop_until([&] { return events_.size() >= count; }, limit);
    return std::exchange(events_, {});
  }

  void append(const std::string& text) { std::ofstream(log_, std::ios::app) << text; }

  const TemporaryHome home_;
  ChannelClient client_;
  const std::string log_;
  std::vector<std::string> events_;
};

using Events = std::vector<std::string>;

TEST_F(LogStream, FollowsTheLogFromItsBeginning) {
  append("1\n2\r\r\n\n\r\n\r3");
  listen();
  EXPECT_EQ(next_events(2), Events({"__clear__", "1\n2\r"}));
  append("3\r");
  EXPECT_EQ(next_events(1, 600ms), Events()) << "the third line has no end yet";
  append("\n\xE4\xB8\n");
  EXPECT_EQ(next_events(1), Events({"\r33\n\uFFFD\uFFFD"}));
  append("\xC1\xAA\n");
  EXPECT_EQ(next_events(1), Events({"\xC1\xAA"})) << "an overlong form";
}

TEST_F(LogStream, StartsOverWhenTheLogShrinks) {
  listen();
  EXPECT_EQ(next_events(1), Events({"__clear__"})) << "before there is a log";
  append("a long first line\nunfinis");
  EXPECT_EQ(next_events(1), Events({"a long first line"}));
  write_file(log_, "new\n");
  EXPECT_EQ(next_events(2), Events({"__clear__", "new"}));
  append("unseen\n");
  std::filesystem::resize_file(log_, 50 * 1024 * 1024 + 1);
  EXPECT_EQ(next_events(1, 800ms), Events()) << "a log over 50 MiB is not followed";
}

TEST_F(LogStream, ReplaysALongLogInPieces) {
  const std::string line = std::string(63, 'x') + "\n";
  std::string text;
  while (text.size() < 64 * 1024 - 10) text += line;
  text += "across the border " + std::string(size_t{200} * 1024 - text.size() - 19, 'y') + "\n";
  append(text);
  const auto begun = std::chrono::steady_clock::now();
  listen();
  listen();
  // The long line ends in the fourth piece. Two timers would be there in half the time.
  const Events events = next_events(4);
  EXPECT_GT(std::chrono::steady_clock::now() - begun, 950ms);
  ASSERT_EQ(events.size(), 4u);
  EXPECT_EQ(events[2] + "\n" + events[3] + "\n", text);
}

TEST_F(LogStream, ListeningTwiceAndCancellingStartOver) {
  append("1\nunfinished");
  listen();
  EXPECT_EQ(next_events(2), Events({"__clear__", "1"}));
  listen();
  append("\n");
  EXPECT_EQ(next_events(2), Events({"__clear__", "1\nunfinished"}));
  ui_invoke_method(client_.messenger(), k_channel, "cancel", nullptr, [](const UiReply&) {});
  run_main_loop_until([] { return false; }, 50ms);
  append("2\n");
  EXPECT_EQ(next_events(1, 600ms), Events());
}

TEST(Utf8Repair, JudgesBitPatterns) {
  const std::pair<std::string, const char*> rows[] = {
      {"plain ascii, longer than a word", "plain ascii, longer than a word"},
      {"日志 ß 😀", "日志 ß 😀"},
      {"1234567\xE4\xB8", "1234567\uFFFD\uFFFD"},
      {"\xC2\xC2\xA9", "\uFFFD\xC2\xA9"},
      {std::string("a\0bcdefgh", 9), "a\uFFFDbcdefgh"},
      // Overlong forms, surrogates and values past the last code point have the right shape.
      {"\xC0\x80 \xED\xA0\x80 \xF7\xBF\xBF\xBF", "\xC0\x80 \xED\xA0\x80 \xF7\xBF\xBF\xBF"},
  };
  for (const auto& [text, repaired] : rows) EXPECT_EQ(repair_utf8(text), repaired) << text;
}
