#include "support/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

void keep_standard_streams_open() {
  int descriptor = 0;
  do {
    descriptor = open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) close(descriptor);
}

static void write_line(std::FILE* stream, const std::string& line) {
  const std::string text = line + "\n";
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fflush(stream);
}

void print_line(const std::string& line) { write_line(stdout, line); }

void print_error_line(const std::string& line) { write_line(stderr, line); }
