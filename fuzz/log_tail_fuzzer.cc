// The tail is the end of the file from the start of a line, wherever the reads of the file end.
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/fuzzer.h"
#include "support/files.h"

static std::string end_of(std::string text, size_t max_lines) {
  if (!text.empty() && text.back() != '\n') text.push_back('\n');
  size_t start = text.size();
  while (start > 0 && (text[start - 1] != '\n' || max_lines-- > 0)) --start;
  return text.substr(start);
}

void try_input(FuzzedDataProvider& input) {
  static const int file = memfd_create("log", MFD_CLOEXEC);
  const auto max_lines = input.ConsumeIntegralInRange<size_t>(0, 50);
  std::string text = input.ConsumeRandomLengthString();
  // Files are read by 64 KiB: this takes the text to the edges of reads.
  text.insert(0, input.ConsumeIntegralInRange<size_t>(0, 0x20800), input.ConsumeIntegral<char>());
  text.append(input.ConsumeIntegralInRange<size_t>(0, 0x20800), input.ConsumeIntegral<char>());
  require(ftruncate(file, 0) == 0 && pwrite(file, text.data(), text.size(), 0) >= 0);
  const std::string tail = read_file_tail("/proc/self/fd/" + std::to_string(file), max_lines);
  require(tail == end_of(text, max_lines));
}
