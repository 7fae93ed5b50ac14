#include "support/shell_command.h"

// The header of older C libraries forgets to say that its functions are C.
extern "C" {
#include <sys/pidfd.h>
}

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <vector>

#include "support/leaving.h"
#include "support/unique_fd.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;

static constexpr milliseconds k_poll_interval{100};
static constexpr milliseconds k_patience_while_leaving{5000};
// Where one tool hangs, its next calls hang too, and a leaving host can't be patient with each.
static constexpr milliseconds k_patience_after_a_hang{500};

// Written by every thread that runs a command.
static std::atomic<steady_clock::time_point> g_last_activity{steady_clock::now()};
static std::atomic<bool> g_command_has_hung{false};

static void note_activity() { g_last_activity = steady_clock::now(); }

milliseconds time_since_shell_activity() {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - g_last_activity.load());
}

// The shell leads a process group of its own: a Ctrl-C in the host's terminal must not end the very
// commands that take the proxy back, and a hung command can be ended with its children.
static int spawn_shell(const std::string& text, pid_t& shell) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  posix_spawnattr_setpgroup(&attributes, 0);
  char* const arguments[] = {const_cast<char*>("sh"), const_cast<char*>("-c"),
                             const_cast<char*>(text.c_str()), nullptr};
  const int error = posix_spawn(&shell, "/bin/sh", nullptr, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  return error;
}

// Returns when the shell has ended, or has been ended because the host is leaving.
static void wait_or_end_hung_shell(pid_t shell) {
  const UniqueFd shell_fd(pidfd_open(shell, 0));
  if (!shell_fd) return;
  pollfd ended = {shell_fd.get(), POLLIN, 0};
  auto patience_began = steady_clock::now();
  bool was_leaving = is_leaving();
  while (poll(&ended, 1, static_cast<int>(k_poll_interval.count())) <= 0) {
    if (!is_leaving()) continue;
    if (!was_leaving) patience_began = steady_clock::now();
    was_leaving = true;
    const auto patience = g_command_has_hung ? k_patience_after_a_hang : k_patience_while_leaving;
    if (steady_clock::now() - patience_began < patience) continue;
    g_command_has_hung = true;
    kill(-shell, SIGKILL);
    return;
  }
}

static int collect_status(pid_t shell) {
  int status = -1;
  while (waitpid(shell, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return status;
}

int run_shell_command(const std::string& text) {
  note_activity();
  pid_t shell = -1;
  const int error = spawn_shell(text, shell);
  if (error == EAGAIN || error == ENOMEM) return -1;
  if (error != 0) return W_EXITCODE(127, 0);
  wait_or_end_hung_shell(shell);
  const int status = collect_status(shell);
  note_activity();
  return status;
}

bool shell_command_succeeds(const std::string& text) { return run_shell_command(text) == 0; }

// Close-on-exec: a core that is launched meanwhile on another thread must not inherit the pipe.
static std::FILE* open_command(const std::string& command) { return popen(command.c_str(), "re"); }

std::string read_first_line(const std::string& command, size_t buffer_size) {
  std::FILE* const output = open_command(command);
  if (output == nullptr) return "";
  std::vector<char> buffer(buffer_size, '\0');
  const bool has_line =
      std::fgets(buffer.data(), static_cast<int>(buffer.size()), output) != nullptr;
  pclose(output);
  std::string line = has_line ? buffer.data() : "";
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

std::string read_command_output(const std::string& command) {
  std::FILE* const output = open_command(command);
  if (output == nullptr) return "";
  std::string text;
  char chunk[256];
  while (std::fgets(chunk, sizeof chunk, output) != nullptr) text += chunk;
  pclose(output);
  return text;
}
