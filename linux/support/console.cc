#include "support/console.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>

#include "support/leaving.h"

void keep_standard_streams_open() {
  int descriptor = 0;
  do {
    descriptor = open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) close(descriptor);
}

// False when the host is leaving and k_console_limit has passed. Looks for exit signals, because
// the main loop can't while the main thread waits here.
static bool wait_until_writable(int descriptor) {
  const auto began = std::chrono::steady_clock::now();
  pollfd waited = {descriptor, POLLOUT, 0};
  while (poll(&waited, 1, static_cast<int>(k_check_interval.count())) <= 0) {
    look_for_exit_signals();
    if (is_wait_over(began, k_console_limit)) return false;
  }
  return true;
}

static void write_line(std::FILE* stream, const std::string& line) {
  const std::string text = line + "\n";
  // A pipe that can be written to has room for this much, so that no write blocks.
  for (size_t start = 0; start < text.size(); start += PIPE_BUF) {
    if (!wait_until_writable(fileno(stream))) return;
    std::fwrite(text.data() + start, 1, std::min<size_t>(PIPE_BUF, text.size() - start), stream);
    std::fflush(stream);
  }
}

void print_line(const std::string& line) { write_line(stdout, line); }

void print_error_line(const std::string& line) { write_line(stderr, line); }
