#include "support/files.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "support/temporary_home.h"

// A log that grows by a line with each read().
static int g_lines_to_write = 0;

extern "C" ssize_t read(int file, void* buffer, size_t size) {
  static const auto real = reinterpret_cast<decltype(&read)>(dlsym(RTLD_NEXT, "read"));
  if (g_lines_to_write-- > 0) std::ofstream("log", std::ios::app) << "newer\n";
  return real(file, buffer, size);
}

TEST(Files, TailGivesTheLastLines) {
  const TemporaryHome home;
  const std::string across_chunks = "2\n" + std::string(200000, 'x') + "\n4";
  const std::pair<std::string, std::string> rows[] = {
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
  write_file("log", "1\n2\n");
  g_lines_to_write = 1000;
  EXPECT_EQ(read_file_tail("log", 3), "1\n2\n");
  EXPECT_EQ(read_file_tail("/dev/zero", 3), std::string(64 << 20, '\0') + "\n");
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
