#include "flutter_embedding/preview/log_view_buffer.h"

#include <gtest/gtest.h>

static std::string text_of(GtkTextBuffer* buffer) {
  g_autofree char* text = nullptr;
  g_object_get(buffer, "text", &text, nullptr);
  return text;
}

static std::string numbers(int first, int last) {
  std::string text = std::to_string(first);
  while (first < last) text += "\n" + std::to_string(++first);
  return text;
}

TEST(LogView, KeepsTheNewestLines) {
  g_autoptr(GtkTextBuffer) buffer = gtk_text_buffer_new(nullptr);
  for (int i = 0; i < 6000; i += 100) preview::log_view_append(buffer, numbers(i, i + 99));
  EXPECT_EQ(text_of(buffer), numbers(1000, 5999));
  preview::log_view_append(buffer, numbers(1, 12000));
  EXPECT_EQ(text_of(buffer), numbers(7001, 12000));
}

TEST(LogView, CutsLongLinesBetweenCharacters) {
  g_autoptr(GtkTextBuffer) buffer = gtk_text_buffer_new(nullptr);
  std::string line;
  while (line.size() < 2 * preview::kMostBytesPerLogLine) line += "中";
  preview::log_view_append(buffer, line + "\nb\xFF");
  EXPECT_EQ(text_of(buffer), line.substr(0, preview::kMostBytesPerLogLine / 3 * 3) + "…\nb\uFFFD");
}
