#include "support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <deque>
#include <filesystem>
#include <random>

#include "support/temporary_home.h"

// The same rule said plainly: split everything, keep the end.
static std::string plain_tail(const std::string& text, size_t max_lines) {
  const std::vector<std::string> lines = lines_of(text);
  std::string tail;
  for (size_t index = lines.size() > max_lines ? lines.size() - max_lines : 0; index < lines.size();
       ++index) {
    tail += lines[index] + "\n";
  }
  return tail;
}

TEST(FileTail, GivesTheLastLines) {
  const TemporaryHome home;
  const std::string path = home.path() + "/log";
  const struct {
    std::string text;
    std::string tail;
  } rows[] = {
      {"", ""},
      {"a\nb\nc", "a\nb\nc\n"},
      {"a\n\nb\n", "a\n\nb\n"},
      {"\n", "\n"},
      {"a\r\nb\r", "a\r\nb\r\n"},
      {std::string("a\0\xff\n", 4), std::string("a\0\xff\n", 4)},
      {"1\n2\n3\n4\n5\n", "3\n4\n5\n"},
      {"1\n2\n3\n4\n5", "3\n4\n5\n"},
  };
  for (const auto& row : rows) {
    write_file(path, row.text);
    EXPECT_EQ(read_file_tail(path, 3), row.tail) << row.text;
  }
  EXPECT_EQ(read_file_tail(path, 0), "");
  EXPECT_EQ(read_file_tail(path + "-missing", 3), "");
  EXPECT_EQ(read_file_tail(home.path(), 3), "") << "a directory";
}

TEST(FileTail, AgreesWithPlainSplittingAcrossChunks) {
  const TemporaryHome home;
  const std::string path = home.path() + "/log";
  std::mt19937 random(7);
  for (const size_t longest : {3u, 90u, 5000u, 200000u}) {
    std::string text;
    while (text.size() < 400000) text += std::string(random() % longest, 'x') + "\n";
    if (random() % 2) text += "no end";
    write_file(path, text);
    EXPECT_EQ(read_file_tail(path, 40), plain_tail(text, 40)) << longest;
  }
}

TEST(Files, NamedPipesAndMissingFilesEndInAnAnswer) {
  const TemporaryHome home;
  const std::string fifo = home.path() + "/pipe";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_EQ(read_whole_file(fifo), "");
  EXPECT_FALSE(write_whole_file(fifo, "text"));
  EXPECT_EQ(read_whole_file(home.path() + "/missing"), std::nullopt);
  EXPECT_FALSE(path_exists(home.path() + "/" + std::string(300, 'n')));
}
