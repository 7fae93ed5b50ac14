#include "support/shell_command.h"

// The header of older C libraries forgets to say that its functions are C.
extern "C" {
#include <sys/pidfd.h>
}

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <functional>
#include <optional>

#include "support/leaving.h"
#include "support/unique_fd.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;

static constexpr milliseconds k_poll_interval{100};
static constexpr milliseconds k_patience_while_leaving{5000};
// Where one tool hangs, its next calls hang too, and a leaving host can't be patient with each.
static constexpr milliseconds k_patience_after_a_hang{1000};

static constexpr int k_most_new_tries = 20;

// Written by every thread that runs a command.
static std::atomic<steady_clock::time_point> g_last_activity{steady_clock::now()};
static std::atomic<bool> g_command_has_hung{false};

static void note_activity() { g_last_activity = steady_clock::now(); }

milliseconds time_since_shell_activity() {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - g_last_activity.load());
}

namespace {

// How long a command may go on without an answer: for ever, but while the host is leaving.
class Patience {
 public:
  bool is_over() {
    if (!is_leaving()) return false;
    const auto now = steady_clock::now();
    if (!began_) began_ = now;
    const auto limit = g_command_has_hung ? k_patience_after_a_hang : k_patience_while_leaving;
    return now - *began_ >= limit;
  }

 private:
  std::optional<steady_clock::time_point> began_;
};

}  // namespace

// The shell leads a process group of its own: a Ctrl-C in the host's terminal must not end the very
// commands that take the proxy back, and a hung command can be ended with its children. Standard
// output goes to `output`, or where the host's goes when that is -1.
static int spawn_shell(const std::string& text, int output, pid_t& shell) {
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawn_file_actions_t redirections;
  posix_spawn_file_actions_init(&redirections);
  if (output >= 0) posix_spawn_file_actions_adddup2(&redirections, output, STDOUT_FILENO);
  char* const arguments[] = {const_cast<char*>("sh"), const_cast<char*>("-c"),
                             const_cast<char*>(text.c_str()), nullptr};
  const int error = posix_spawn(&shell, "/bin/sh", &redirections, &attributes, arguments, environ);
  posix_spawn_file_actions_destroy(&redirections);
  posix_spawnattr_destroy(&attributes);
  note_activity();
  return error;
}

static bool wait_until_readable(int fd, Patience& patience) {
  pollfd waited = {fd, POLLIN, 0};
  while (poll(&waited, 1, static_cast<int>(k_poll_interval.count())) <= 0) {
    if (patience.is_over()) return false;
  }
  return true;
}

// False when not even the kill was answered in time, as by a tool that waits for a dead disk.
static bool wait_or_end_hung_shell(pid_t shell, Patience& patience) {
  const UniqueFd shell_fd(pidfd_open(shell, 0));
  if (!shell_fd) return true;
  if (wait_until_readable(shell_fd.get(), patience)) return true;
  g_command_has_hung = true;
  kill(-shell, SIGKILL);
  pollfd ended = {shell_fd.get(), POLLIN, 0};
  return poll(&ended, 1, static_cast<int>(k_patience_after_a_hang.count())) > 0;
}

static int finish_shell(pid_t shell, Patience& patience) {
  int status = -1;
  if (!wait_or_end_hung_shell(shell, patience)) return -1;
  while (waitpid(shell, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  note_activity();
  return status;
}

// A Ctrl-C that comes before the new shell leads its own group ends it before it has done anything;
// it was meant for the host, so the command is still owed.
static bool has_ended_before_it_began(int status) {
  return status != -1 && WIFSIGNALED(status) &&
         (WTERMSIG(status) == SIGINT || WTERMSIG(status) == SIGHUP || WTERMSIG(status) == SIGTERM);
}

static int run_shell_once(const std::string& text) {
  pid_t shell = -1;
  const int error = spawn_shell(text, -1, shell);
  if (error == EAGAIN || error == ENOMEM) return -1;
  if (error != 0) return W_EXITCODE(127, 0);
  Patience patience;
  return finish_shell(shell, patience);
}

int run_shell_command(const std::string& text) {
  int status = run_shell_once(text);
  for (int more = k_most_new_tries; has_ended_before_it_began(status) && more > 0; --more) {
    status = run_shell_once(text);
  }
  return status;
}

bool shell_command_succeeds(const std::string& text) { return run_shell_command(text) == 0; }

using IsEnough = std::function<bool(const std::string& text_so_far)>;

// Runs `command`, appends what it prints to `text` until that is enough, and gives its status.
static int read_output_once(const std::string& command, const IsEnough& is_enough,
                            std::string& text) {
  int ends[2];
  // Close-on-exec: a core that is launched meanwhile on another thread must not inherit the pipe.
  if (pipe2(ends, O_CLOEXEC) != 0) return -1;
  pid_t shell = -1;
  Patience patience;
  {
    const UniqueFd output(ends[0]);
    {
      const UniqueFd input(ends[1]);
      if (spawn_shell(command, input.get(), shell) != 0) return -1;
    }
    char chunk[4096];
    while (!is_enough(text) && wait_until_readable(output.get(), patience)) {
      const ssize_t count = read(output.get(), chunk, sizeof chunk);
      if (count <= 0) break;
      text.append(chunk, static_cast<size_t>(count));
    }
  }
  return finish_shell(shell, patience);
}

static std::string read_output(const std::string& command, const IsEnough& is_enough) {
  std::string text;
  int status = read_output_once(command, is_enough, text);
  for (int more = k_most_new_tries; has_ended_before_it_began(status) && more > 0; --more) {
    text.clear();
    status = read_output_once(command, is_enough, text);
  }
  return text;
}

std::string read_first_line(const std::string& command, size_t buffer_size) {
  const size_t most_bytes = buffer_size - 1;
  std::string line = read_output(command, [most_bytes](const std::string& text) {
    return text.size() >= most_bytes || text.find('\n') != text.npos;
  });
  line.resize(std::min(line.find('\n'), std::min(line.size(), most_bytes)));
  line.resize(std::min(line.find('\0'), line.size()));
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

std::string read_command_output(const std::string& command) {
  return read_output(command, [](const std::string&) { return false; });
}
