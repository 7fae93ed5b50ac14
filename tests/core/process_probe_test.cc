#include "core/process_probe.h"

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "support/temporary_home.h"

TEST(ProcessProbe, MatchesWhatACommandLineHolds) {
  std::pair<std::vector<std::string>, bool> rows[] = {
      {{"/opt/corvana/bin/needle"}, true},
      {{"cat", "-", "/tmp/needle.json"}, true},
      {{std::string(10000, 'x') + "needle"}, true},
      {{"NEEDLE"}, false},
      {{"cat", "-", "need", "le"}, false},
      {{"cat\nneedle"}, false},
      {{"needle\ncat"}, true},
  };
  for (auto& [command_line, is_found] : rows) {
    std::vector<char*> arguments = {const_cast<char*>("/bin/cat")};
    for (std::string& word : command_line) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    GPid pid = 0;
    int input = -1;
    g_spawn_async_with_pipes(
        nullptr, arguments.data(), nullptr,
        static_cast<GSpawnFlags>(G_SPAWN_FILE_AND_ARGV_ZERO | G_SPAWN_DO_NOT_REAP_CHILD), nullptr,
        nullptr, &pid, &input, nullptr, nullptr, nullptr);
    // The spawn returns a moment before the new command line is in place.
    const std::string cmdline = "/proc/" + std::to_string(pid) + "/cmdline";
    while (read_file(cmdline).empty()) std::this_thread::yield();
    EXPECT_EQ(is_process_running("needle"), is_found) << command_line.front().substr(0, 20);
    close(input);
    waitpid(pid, nullptr, 0);
  }
  EXPECT_FALSE(is_process_running("needle"));
}
