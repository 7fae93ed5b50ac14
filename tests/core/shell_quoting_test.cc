#include "core/shell_quoting.h"

#include <gtest/gtest.h>

#include "support/shell_command.h"

TEST(ShellQuoting, EscapesOnlyItsSet) {
  const struct {
    const char* path;
    const char* escaped;
  } rows[] = {
      {"", ""},
      {"/home/a b/c", "/home/a\\ b/c"},
      {"a\\b", "a\\\\b"},
      {"/opt/$HOME", "/opt/\\$HOME"},
      {" \"$&'();<>[\\]`|", "\\ \\\"\\$\\&\\'\\(\\)\\;\\<\\>\\[\\\\\\]\\`\\|"},
      {"*?~#!{}%=\t\n", "*?~#!{}%=\t\n"},
      {"/家/目录", "/家/目录"},
  };
  for (const auto& row : rows) EXPECT_EQ(escape_path(row.path), row.escaped) << row.path;
}

TEST(ShellQuoting, ComesBackFromTheShellAsOneArgument) {
  for (const char* path :
       {"/a b/c", "x\"y'z", "$(id)`id`", "a&b;c|d<e>f", "[ab](c)\\d", "/家/目录"}) {
    EXPECT_EQ(read_first_line("printf '%s:' " + escape_path(path), 4096), std::string(path) + ":");
  }
}
