// Starts a program on the display and ends it once its first window is mapped. Prints the
// milliseconds until then and the processor time used, also in milliseconds. No other program may
// open a window meanwhile.

#include <X11/Xlib.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>

using std::chrono::steady_clock;

static constexpr int k_limit_ms = 30000;

static bool wait_for_mapped_window(Display* display) {
  while (true) {
    while (XPending(display) > 0) {
      XEvent event;
      XNextEvent(display, &event);
      if (event.type == MapNotify) return true;
    }
    pollfd connection = {ConnectionNumber(display), POLLIN, 0};
    if (poll(&connection, 1, k_limit_ms) <= 0) return false;
  }
}

static double processor_milliseconds(pid_t pid) {
  clockid_t clock;
  timespec time = {};
  if (clock_getcpuclockid(pid, &clock) == 0) clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

int main(int, char** argv) {
  const std::unique_ptr<Display, int (*)(Display*)> display(XOpenDisplay(nullptr), XCloseDisplay);
  if (!display || argv[1] == nullptr) return 2;
  XSelectInput(display.get(), DefaultRootWindow(display.get()), SubstructureNotifyMask);
  XSync(display.get(), False);

  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  pid_t pid;
  const auto begin = steady_clock::now();
  if (posix_spawn(&pid, argv[1], nullptr, &attributes, argv + 1, environ) != 0) return 1;
  const bool mapped = wait_for_mapped_window(display.get());
  const std::chrono::duration<double, std::milli> time = steady_clock::now() - begin;
  const double processor_time = processor_milliseconds(pid);
  kill(-pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  if (!mapped) return 1;
  std::fprintf(stderr, "%.2f %.2f\n", time.count(), processor_time);
}
