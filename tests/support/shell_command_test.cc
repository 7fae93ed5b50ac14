#include "support/shell_command.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <thread>

#include "support/console.h"
#include "support/leaving.h"
#include "support/temporary_home.h"

using namespace std::chrono_literals;

// Stands for a kernel without pidfd_open(), or a filter that forbids it.
static std::atomic<bool> g_no_pidfd{false};

extern "C" long syscall(long number, ...) {
  va_list arguments;
  va_start(arguments, number);
  const long first = va_arg(arguments, long), second = va_arg(arguments, long),
             third = va_arg(arguments, long);
  va_end(arguments);
  if (number == SYS_pidfd_open && g_no_pidfd) return errno = ENOSYS, -1;
  static const auto real = reinterpret_cast<decltype(&syscall)>(dlsym(RTLD_NEXT, "syscall"));
  return real(number, first, second, third);
}

TEST(ShellCommand, GivesTheStatusOfSystem) {
  for (const bool no_pidfd : {false, true}) {
    g_no_pidfd = no_pidfd;
    for (const char* text :
         {"true", "exit 3", "kill -9 $$", "kill $$", "no-such-command 2>&-", ""}) {
      EXPECT_EQ(run_shell_command(text), system(text)) << text;
    }
    EXPECT_EQ(run_shell_command("kill -STOP $$"), 0) << "resumed";
  }
}

TEST(ShellCommand, InheritsNeitherOurSignalSettingsNorAnotherOnesPipe) {
  const TemporaryHome home;
  for (int signal_number = 1; signal_number < NSIG; ++signal_number) {
    std::signal(signal_number, signal_number == SIGPIPE ? SIG_IGN : SIG_DFL);
  }
  sigset_t signals;
  sigfillset(&signals);
  pthread_sigmask(SIG_SETMASK, &signals, nullptr);
  // Signals 1 to 28; the C library keeps some of its own ignored.
  EXPECT_EQ(command_output("sed -n 's/^Sig[BI].*\\(.......\\)$/\\1/p' /proc/self/status"),
            "0000000\n0000000\n");

  const std::string descriptors = command_output("ls /proc/self/fd");
  std::thread other(
      [] { command_output("touch ready; until [ -e finished ]; do sleep 0.01; done"); });
  while (access("ready", F_OK) != 0) std::this_thread::yield();
  EXPECT_EQ(command_output("ls /proc/self/fd"), descriptors);
  write_file("finished", "");
  other.join();
}

TEST(ShellCommand, IsKilledWhenItHangsWhileTheHostLeaves) {
  begin_leaving();
  for (const bool no_pidfd : {true, false}) {
    g_no_pidfd = no_pidfd;
    EXPECT_EQ(run_shell_command("sleep 20"), SIGKILL);
    EXPECT_EQ(command_output("echo text; sleep 20"), "text\n");
  }
}

TEST(ShellCommand, ReadsTheFirstLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"printf ' a\\t\\r\\r\\nc\\n'", " a\t"}, {"printf '\\nb'", ""}, {"printf 'a\\0b\\n'", "a"},
      {"printf 1234567890", "1234567"},        {"true", ""},
  };
  for (const auto& [command, line] : rows)
    EXPECT_EQ(first_output_line(command, 7), line) << command;
}

TEST(Leaving, CutsSleepsShort) {
  EXPECT_TRUE(sleep_unless_leaving(10ms));
  std::thread leaving(begin_leaving);
  EXPECT_FALSE(sleep_unless_leaving(100s));
  leaving.join();
}

TEST(Leaving, ALineThatNobodyReadsIsGivenUp) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_NONBLOCK), 0);
  while (write(ends[1], "x", 1) == 1) {
  }
  fcntl(ends[1], F_SETFL, 0);
  dup2(ends[1], STDERR_FILENO);
  begin_leaving();
  print_error_line("lost");  // would wait for ever
}
