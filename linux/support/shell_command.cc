#include "support/shell_command.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>

#include "support/leaving.h"
#include "support/unique_fd.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;

void prepare_signals() {
  // A console that has gone away must not end the process before it has taken the proxy back.
  std::signal(SIGPIPE, SIG_IGN);
  // Commands inherit this. They run in a background process group, which the terminal would stop
  // when a command reads from it or writes to it.
  std::signal(SIGTTOU, SIG_IGN);
  std::signal(SIGTTIN, SIG_IGN);
  // If the launcher has ignored SIGCHLD, waitpid() gives no exit status.
  std::signal(SIGCHLD, SIG_DFL);
}

// How often a command that an exit signal has ended is run again. A held Ctrl-C needs far fewer,
// and a tool that ends itself by such a signal would be run for ever.
static constexpr int k_max_repetitions = 20;

// Written by every thread that runs a command.
static std::atomic<steady_clock::time_point> g_last_activity{steady_clock::now()};
static std::atomic<bool> g_command_has_hung{false};

static void note_activity() { g_last_activity = steady_clock::now(); }

milliseconds time_since_shell_activity() {
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - g_last_activity.load());
}

// Looks for exit signals, because the main loop can't while the main thread waits for a command.
static bool has_hung(steady_clock::time_point began) {
  look_for_exit_signals();
  return is_wait_over(began, g_command_has_hung ? k_command_limit_after_hang : k_command_limit);
}

// A tool that prints a warning to a console that is gone would be ended by SIGPIPE, before it has
// done its work.
static bool is_console_gone(int descriptor) {
  pollfd console = {descriptor, POLLOUT, 0};
  return poll(&console, 1, 0) > 0 && (console.revents & (POLLERR | POLLHUP)) != 0;
}

static void set_output(posix_spawn_file_actions_t* actions, int output) {
  if (output >= 0) posix_spawn_file_actions_adddup2(actions, output, STDOUT_FILENO);
  for (const int console : {STDOUT_FILENO, STDERR_FILENO}) {
    if ((output >= 0 && console == STDOUT_FILENO) || !is_console_gone(console)) continue;
    posix_spawn_file_actions_addopen(actions, console, "/dev/null", O_WRONLY, 0);
  }
}

// Commands get SIGPIPE's default action back. SIGTSTP is blocked, and stays so in them: before the
// child is in its own process group a Ctrl-Z would stop it, and posix_spawn(), which waits for its
// exec, would block.
static void set_signals(posix_spawnattr_t* attributes) {
  sigset_t defaults, blocked;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTSTP);
  posix_spawnattr_setsigdefault(attributes, &defaults);
  posix_spawnattr_setsigmask(attributes, &blocked);
}

// Standard output goes to `output`, or where the host's goes when that is -1. -1 when no process
// can be made.
static pid_t start_shell(const std::string& command, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  set_output(&actions, output);
  set_signals(&attributes);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  const char* const arguments[] = {"sh", "-c", command.c_str(), nullptr};
  pid_t shell = -1;
  const int error = posix_spawn(&shell, "/bin/sh", &actions, &attributes,
                                const_cast<char* const*>(arguments), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  note_activity();
  return error == 0 ? shell : -1;
}

// False once the shell has ended and is reaped; `status` is then its wait status. A shell that was
// stopped, as by SIGSTOP, is resumed.
static bool reap_or_resume_shell(pid_t shell, int& status) {
  const pid_t changed = waitpid(shell, &status, WNOHANG | WUNTRACED);
  if (changed == 0) return true;
  if (changed < 0 || !WIFSTOPPED(status)) return false;
  kill(-shell, SIGCONT);
  return true;
}

// The wait status, or nothing when `is_over` before the shell has ended. Without pidfd_open() the
// descriptor is -1, and poll() only sleeps for k_check_interval.
static std::optional<int> wait_for_shell(pid_t shell, const std::function<bool()>& is_over) {
  const UniqueFd shell_fd(static_cast<int>(syscall(SYS_pidfd_open, shell, 0)));
  pollfd ended = {shell_fd.get(), POLLIN, 0};
  int status = -1;
  while (reap_or_resume_shell(shell, status)) {
    if (poll(&ended, 1, static_cast<int>(k_check_interval.count())) <= 0 && is_over()) return {};
  }
  note_activity();
  return status;
}

// `began` is when the wait for the command began.
static int finish_shell(pid_t shell, steady_clock::time_point began) {
  auto status = wait_for_shell(shell, [began] { return has_hung(began); });
  if (status) return *status;
  g_command_has_hung = true;
  kill(-shell, SIGKILL);
  const auto killed = steady_clock::now();
  status = wait_for_shell(shell, [killed] { return steady_clock::now() - killed >= k_kill_limit; });
  return status.value_or(-1);
}

// A Ctrl-C between the fork and the new process group ends the shell before it has run anything.
static bool was_interrupted(int status) {
  const auto* const end = std::end(k_exit_signals);
  return WIFSIGNALED(status) && std::find(k_exit_signals, end, WTERMSIG(status)) != end;
}

static int repeat_while_interrupted(const std::function<int()>& run) {
  int status = run();
  for (int i = 0; i < k_max_repetitions && was_interrupted(status); ++i) status = run();
  return status;
}

int run_shell_command(const std::string& command) {
  return repeat_while_interrupted([&command] {
    const pid_t shell = start_shell(command, -1);
    return shell < 0 ? -1 : finish_shell(shell, steady_clock::now());
  });
}

bool shell_command_succeeds(const std::string& command) { return run_shell_command(command) == 0; }

static bool wait_until_readable(int descriptor, steady_clock::time_point began) {
  pollfd waited = {descriptor, POLLIN, 0};
  while (poll(&waited, 1, static_cast<int>(k_check_interval.count())) <= 0) {
    if (has_hung(began)) return false;
  }
  return true;
}

// The wait status of `command`, or -1. Replaces `text` by what it prints, up to `max_size` bytes.
static int read_output(const std::string& command, size_t max_size, std::string& text) {
  int ends[2];
  // Close-on-exec: a core that another thread launches meanwhile must not inherit the pipe.
  if (pipe2(ends, O_CLOEXEC) != 0) return -1;
  UniqueFd read_end(ends[0]);
  UniqueFd write_end(ends[1]);
  const pid_t shell = start_shell(command, write_end.get());
  write_end.reset();
  if (shell < 0) return -1;
  const auto began = steady_clock::now();
  char chunk[4096];
  text.clear();
  while (text.size() < max_size && wait_until_readable(read_end.get(), began)) {
    const ssize_t count =
        read(read_end.get(), chunk, std::min(sizeof chunk, max_size - text.size()));
    if (count <= 0) break;
    text.append(chunk, static_cast<size_t>(count));
  }
  read_end.reset();
  return finish_shell(shell, began);
}

static std::string output_of(const std::string& command, size_t max_size) {
  std::string text;
  repeat_while_interrupted([&] { return read_output(command, max_size, text); });
  return text;
}

std::string first_output_line(const std::string& command, size_t max_size) {
  std::string line = output_of(command, max_size);
  line.resize(std::min({line.size(), line.find('\n'), line.find('\0')}));
  line.erase(line.find_last_not_of('\r') + 1);
  return line;
}

std::string command_output(const std::string& command) { return output_of(command, SIZE_MAX); }
