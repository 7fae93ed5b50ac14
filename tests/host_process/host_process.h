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
  explicit ChildProcess(const std::vector<std::string>& command);
  ~ChildProcess();  // kills it and all that it started
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t pid() const { return pid_; }
  void send(int signal_number) const;
  std::string console() const;
  bool wait_for(const std::string& text_on_console) const;

  // The wait status; nothing when it still runs after the limit.
  std::optional<int> wait_for_exit(std::chrono::milliseconds limit = std::chrono::seconds(30));

  // Waits a while for all that it started to end. The command lines of what still runs then.
  std::string still_running() const;

 private:
  pid_t pid_ = -1;
  std::optional<int> status_;
  std::string console_path_;
};

std::vector<std::string> host_command(std::vector<std::string> arguments);

// From then on a signal makes the host leave; before, it would just end.
bool wait_until_signals_are_hooked(const ChildProcess& host);

// What a window manager does when somebody presses the close button.
void close_window(const ChildProcess& host);

// How to tell a host to leave. Ctrl-C and a closed terminal reach its whole process group.
struct WayOut {
  const char* name;
  void (*take)(const ChildProcess& host);
};
extern const WayOut k_ways_out[4];
void PrintTo(const WayOut& way, std::ostream* out);

bool does_core_run();

// What the command prints on standard output, through the shell.
std::string output_of(const std::string& command);

// A home, free ports and a core configuration with them.
class HostTest : public testing::Test {
 protected:
  HostTest();
  std::vector<std::string> connecting(std::vector<std::string> more = {}) const;

  TemporaryHome home_;
  const int mixed_port_;
  const int clash_port_;
  const std::string config_;
};

#endif
