// Lines don't depend on how the log was cut into reads, and what is repaired has UTF-8's shape.
#include "fuzz/fuzzer.h"
#include "log_stream/log_text.h"

static bool has_shape_of_utf8(const std::string& text) {
  int awaited = 0;
  for (const char byte : text) {
    const int leading_ones = __builtin_clz(~(static_cast<unsigned>(byte) << 24));
    if (byte == 0 || leading_ones > 4 || (leading_ones == 1) != (awaited > 0)) return false;
    awaited = leading_ones == 1 ? awaited - 1 : std::max(leading_ones - 1, 0);
  }
  return awaited == 0;
}

static size_t replacements_in(const std::string& text) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find("\xEF\xBF\xBD", at)) != text.npos; at += 3) ++count;
  return count;
}

void try_input(FuzzedDataProvider& input) {
  const std::string text = input.ConsumeRandomLengthString();
  const std::string repaired = repair_utf8(text);
  require(has_shape_of_utf8(repaired) && (repaired == text) == has_shape_of_utf8(text));
  // Each bad byte, and nothing else, has become three.
  require(repaired.size() - text.size() == 2 * (replacements_in(repaired) - replacements_in(text)));

  std::string rest_of_whole, rest, lines;
  for (size_t start = 0, size = 0; start < text.size(); start += size) {
    size = input.ConsumeIntegralInRange<size_t>(1, 64);
    const std::string piece = take_complete_lines(rest, text.substr(start, size));
    lines += (lines.empty() || piece.empty() ? "" : "\n") + piece;
  }
  require(lines == take_complete_lines(rest_of_whole, text) && rest == rest_of_whole);
  require(lines.empty() || ("\n" + lines + "\n").find("\n\n") == lines.npos);
}
