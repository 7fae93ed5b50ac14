#include <gtest/gtest.h>

#include "log_stream/log_lines.h"
#include "log_stream/utf8_repair.h"

TEST(LogLines, KeepsCompleteLinesOnly) {
  const struct {
    const char* unfinished;
    const char* bytes;
    const char* batch;
    const char* left;
  } rows[] = {
      {"", "a\nb\nc", "a\nb", "c"},
      {"a", "b\nc\n", "ab\nc", ""},
      {"a", "b", "", "ab"},
      {"", "\n\n\r\na\r\n\n", "a", ""},
      {"", "a\r\r\nb\rc\n", "a\r\nb\rc", ""},
      {"a\r", "\n", "a", ""},
      {"\r", "\n", "", ""},
      {"", "", "", ""},
  };
  for (const auto& row : rows) {
    std::string unfinished = row.unfinished;
    EXPECT_EQ(take_complete_lines(unfinished, row.bytes), row.batch) << row.bytes;
    EXPECT_EQ(unfinished, row.left) << row.bytes;
  }
}

TEST(Utf8Repair, JudgesBitPatterns) {
  const std::string bad = "\xEF\xBF\xBD";
  const struct {
    std::string text;
    std::string repaired;
  } rows[] = {
      {"plain ascii, longer than a word", "plain ascii, longer than a word"},
      {"日志 ß 😀", "日志 ß 😀"},
      {"a\xFF"
       "b",
       "a" + bad + "b"},
      {"1234567\xE4\xB8", "1234567" + bad + bad},
      {"\xE4\xB8\n\xAD", bad + bad + "\n" + bad},
      {"\xC2\xC2\xA9", bad + "\xC2\xA9"},
      {"\xF0\x9F\x98"
       "a",
       bad + bad + bad + "a"},
      {"\xF8\x88\x80\x80", bad + bad + bad + bad},
      {std::string("12345678a\0b", 11), "12345678a" + bad + "b"},
      // Overlong forms, surrogates and values past the last code point have the right shape.
      {"\xC0\x80 \xED\xA0\x80 \xF7\xBF\xBF\xBF", "\xC0\x80 \xED\xA0\x80 \xF7\xBF\xBF\xBF"},
      {"", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(repair_utf8(row.text), row.repaired) << row.text;
}
