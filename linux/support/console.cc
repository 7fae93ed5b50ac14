#include "support/console.h"

#include <cstdio>

static void write_line(std::FILE* stream, const std::string& line) {
  const std::string text = line + "\n";
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fflush(stream);
}

void print_line(const std::string& line) { write_line(stdout, line); }

void print_error_line(const std::string& line) { write_line(stderr, line); }
