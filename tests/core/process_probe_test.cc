#include "core/process_probe.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "support/temporary_home.h"

// A program that waits for its standard input, under a command line of our choice.
class WaitingProcess {
 public:
  explicit WaitingProcess(std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], 0);
    EXPECT_EQ(posix_spawn(&pid_, "/bin/cat", &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[0]);
    write_end_ = ends[1];
    // The kernel lets go of us a moment before the new program's command line is in place.
    const std::string cmdline = "/proc/" + std::to_string(pid_) + "/cmdline";
    while (read_file(cmdline).empty()) std::this_thread::yield();
  }
  ~WaitingProcess() {
    close(write_end_);
    waitpid(pid_, nullptr, 0);
  }

 private:
  pid_t pid_ = 0;
  int write_end_ = -1;
};

TEST(ProcessProbe, MatchesWhatACommandLineHolds) {
  const std::string padding(10000, 'x');
  const struct {
    std::vector<std::string> arguments;
    bool found;
  } rows[] = {
      {{"/opt/corvana/bin/needle"}, true},
      {{"needlex"}, true},
      {{"cat", "-", "/tmp/needle.json"}, true},
      {{padding + "needle"}, true},
      {{"NEEDLE"}, false},
      {{"cat", "-", "need", "le"}, false},
      {{"cat\nneedle"}, false},
      {{"needle\ncat"}, true},
  };
  for (const auto& row : rows) {
    const WaitingProcess process(row.arguments);
    EXPECT_EQ(is_process_running("needle"), row.found) << row.arguments.front().substr(0, 20);
  }
  EXPECT_FALSE(is_process_running("needle"));
}

TEST(ProcessProbe, SeesItsOwnProcessAndAnythingForAnEmptyName) {
  EXPECT_TRUE(is_process_running("process_probe_test"));
  EXPECT_TRUE(is_process_running(""));
}
