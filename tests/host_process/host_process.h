#ifndef CORVANA_TESTS_HOST_PROCESS_HOST_PROCESS_H_
#define CORVANA_TESTS_HOST_PROCESS_HOST_PROCESS_H_

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "support/temporary_home.h"

// Asks until the answer is true. False when it never was within the limit.
bool eventually(const std::function<bool()>& is_so,
                std::chrono::milliseconds limit = std::chrono::seconds(30));

// A program in a session of its own, with the test's environment. What it and its children print goes
// to a file in the working directory.
class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> command);
  ~ChildProcess();  // kills it and all that it started
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  std::string console() const { return read_file(console_path_); }
  bool wait_for(const std::string& text_on_console) const;

  // The wait status; nothing when it still runs after the limit.
  std::optional<int> wait_for_exit(std::chrono::milliseconds limit = std::chrono::seconds(30));

  // Waits a while for all that it started to end. The command lines of what still runs then.
  std::string still_running() const;

 private:
  pid_t pid_;
  std::optional<int> status_;
  std::string console_path_;
};

bool does_core_run();

// What a window manager does when somebody presses the close button of the only window.
void close_window();

// Windows that can be seen on the display.
int visible_windows();

// A home, and in it a core configuration with the mixed port 7890 and the clash API port 9090.
class HostTest : public testing::Test {
 protected:
  HostTest();

  // The command line of a host that connects at once, behind `launcher`.
  std::vector<std::string> connecting(const std::vector<std::string>& more = {},
                                      std::vector<std::string> launcher = {}) const;

  const TemporaryHome home_;
  const std::string config_ = home_.path() + "/config.json";
};

#endif
