#include "core/process_probe.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

TEST(ProcessProbe, MatchesWhatACommandLineHolds) {
  std::pair<std::vector<std::string>, bool> rows[] = {
      {{"/opt/corvana/bin/needle"}, true},
      {{"cat", "/tmp/needle.json"}, true},
      {{std::string(10000, 'x') + "needle"}, true},
      {{"NEEDLE"}, false},
      {{"cat", "need", "le"}, false},
      {{"cat\nneedle"}, false},
      {{"needle\ncat"}, true},
  };
  for (auto& [command_line, is_found] : rows) {
    // A shell that stops itself, so that it is certain to have its command line by then.
    command_line.insert(command_line.begin() + 1, {"-c", "kill -STOP $$"});
    std::vector<char*> arguments;
    for (std::string& word : command_line) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t pid = 0;
    ASSERT_EQ(posix_spawn(&pid, "/bin/sh", nullptr, nullptr, arguments.data(), environ), 0);
    waitpid(pid, nullptr, WUNTRACED);
    EXPECT_EQ(is_process_running("needle"), is_found) << command_line.front().substr(0, 20);
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  EXPECT_FALSE(is_process_running("needle"));
}
