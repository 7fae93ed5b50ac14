#include "support/shell_command.h"

// The header of older C libraries forgets to say that its functions are C.
extern "C" {
#include <sys/pidfd.h>
}

#include <fcntl.h>
#include <poll.h>
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

// In a child that still shares the host's memory: nothing but system calls, and all signals blocked
// until no handler of the host's is left. A Ctrl-C that has come since the fork was meant for the
// host, as was a Ctrl-Z, which would leave the host waiting for a stopped child; ignoring it for a
// moment throws it away, and from the new group on no more of them come. What the terminal sends to
// a group in its background stays ignored: a tool's warning must not stop the tool.
[[noreturn]] static void become_shell(const char* text, int output, const sigset_t& mask) {
  setpgid(0, 0);
  for (int signal_number = 1; signal_number < NSIG; ++signal_number) {
    const auto before = std::signal(signal_number, SIG_IGN);
    const bool from_terminal = signal_number == SIGTTOU || signal_number == SIGTTIN;
    if (before != SIG_IGN && !from_terminal) std::signal(signal_number, SIG_DFL);
  }
  if (output >= 0) dup2(output, STDOUT_FILENO);
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  execl("/bin/sh", "sh", "-c", text, nullptr);
  _exit(127);
}

// The shell leads a process group of its own: a Ctrl-C in the host's terminal must not end the very
// commands that take the proxy back, and a hung command can be ended with its children. Standard
// output goes to `output`, or where the host's goes when that is -1. -1 when no process can be made.
// Not fork: copying the page tables of a process with a window takes as long as a short command.
static pid_t fork_shell(const std::string& text, int output) {
  sigset_t all_signals;
  sigset_t mask;
  sigfillset(&all_signals);
  pthread_sigmask(SIG_SETMASK, &all_signals, &mask);
  const pid_t shell = vfork();
  if (shell == 0) become_shell(text.c_str(), output, mask);
  pthread_sigmask(SIG_SETMASK, &mask, nullptr);
  note_activity();
  return shell;
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

int run_shell_command(const std::string& text) {
  const pid_t shell = fork_shell(text, -1);
  if (shell < 0) return -1;
  Patience patience;
  return finish_shell(shell, patience);
}

bool shell_command_succeeds(const std::string& text) { return run_shell_command(text) == 0; }

// Runs `command` and gives what it prints, until `is_enough` says so of the text so far.
static std::string read_output(const std::string& command,
                               const std::function<bool(const std::string&)>& is_enough) {
  int ends[2];
  // Close-on-exec: a core that is launched meanwhile on another thread must not inherit the pipe.
  if (pipe2(ends, O_CLOEXEC) != 0) return "";
  UniqueFd output(ends[0]);
  UniqueFd input(ends[1]);
  const pid_t shell = fork_shell(command, input.get());
  input.reset();
  if (shell < 0) return "";
  std::string text;
  Patience patience;
  char chunk[4096];
  while (!is_enough(text) && wait_until_readable(output.get(), patience)) {
    const ssize_t count = read(output.get(), chunk, sizeof chunk);
    if (count <= 0) break;
    text.append(chunk, static_cast<size_t>(count));
  }
  output.reset();
  finish_shell(shell, patience);
  return text;
}

std::string read_first_line(const std::string& command, size_t buffer_size) {
  const size_t most_bytes = buffer_size - 1;
  std::string line = read_output(command, [most_bytes](const std::string& text) {
    return text.size() >= most_bytes || text.find('\n') != text.npos;
  });
  line.resize(std::min(line.size(), most_bytes));
  line.erase(std::find(line.begin(), line.end(), '\n'), line.end());
  line.erase(std::find(line.begin(), line.end(), '\0'), line.end());
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

std::string read_command_output(const std::string& command) {
  return read_output(command, [](const std::string&) { return false; });
}
