#include "log_stream/log_text.h"

#include <gtest/gtest.h>

TEST(LogLines, KeepsCompleteLinesOnly) {
  const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
      // Unfinished before, new bytes, the batch, unfinished after.
      {"", "a\nb\nc", "a\nb", "c"}, {"a", "b\nc\n", "ab\nc", ""},
      {"a", "b", "", "ab"},         {"", "\n\r\na\r\r\nb\rc\n\n", "a\r\nb\rc", ""},
      {"a\r", "\n", "a", ""},
  };
  for (const auto& [before, bytes, batch, after] : rows) {
    std::string unfinished = before;
    EXPECT_EQ(take_complete_lines(unfinished, bytes), batch);
    EXPECT_EQ(unfinished, after) << bytes;
  }
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
