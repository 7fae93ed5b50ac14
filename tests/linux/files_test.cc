#include "support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/temporary_home.h"

TEST(Files, TailGivesTheLastLines) {
  const TemporaryHome home;
  const std::string across_chunks = "2\n" + std::string(200000, 'x') + "\n4";
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"\n", "\n"},
      {"a\r\n\nb\r", "a\r\n\nb\r\n"},
      {std::string("a\0\xff\n", 4), std::string("a\0\xff\n", 4)},
      {"1\n2\n3\n4\n", "2\n3\n4\n"},
      {"1\n2\n3\n4", "2\n3\n4\n"},
      {std::string(100000, 'y') + "\n1\n" + across_chunks, across_chunks + "\n"},
  };
  for (const auto& [text, tail] : rows) {
    write_file("log", text);
    EXPECT_EQ(read_file_tail("log", 3), tail);
  }
  EXPECT_EQ(read_file_tail("log", 0), "");
  EXPECT_EQ(read_file_tail("missing", 3), "");
  EXPECT_EQ(read_file_tail(home.path(), 3), "") << "a directory";
}

TEST(Files, NamedPipesAndMissingFilesEndInAnAnswer) {
  const TemporaryHome home;
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  EXPECT_EQ(read_whole_file("pipe"), "");
  EXPECT_FALSE(write_whole_file("pipe", "text"));
  EXPECT_EQ(read_whole_file("missing"), std::nullopt);
  EXPECT_FALSE(path_exists(std::string(300, 'n')));
}
