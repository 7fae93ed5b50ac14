#include "core/shell_quoting.h"

#include <gtest/gtest.h>

#include "support/shell_command.h"

TEST(ShellQuoting, EscapesOnlyItsSetAndComesBackFromTheShellAsOneArgument) {
  const std::pair<const char*, const char*> rows[] = {
      {"", ""},
      {" a\"$&'();<>[\\]`|b", "\\ a\\\"\\$\\&\\'\\(\\)\\;\\<\\>\\[\\\\\\]\\`\\|b"},
      {"+~#!{}%=/家/目录", "+~#!{}%=/家/目录"},
  };
  for (const auto& [path, escaped] : rows) {
    EXPECT_EQ(escape_path(path), escaped);
    EXPECT_EQ(first_output_line("printf '%s:' " + escape_path(path), 4096),
              std::string(path) + ":");
  }
  EXPECT_EQ(escape_path("*?\t\n"), "*?\t\n");
}
