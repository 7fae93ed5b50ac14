#include "log_stream/log_text.h"

static constexpr char k_replacement[] = "\xEF\xBF\xBD";

static void append_line(std::string& batch, std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  if (line.empty()) return;
  if (!batch.empty()) batch.push_back('\n');
  batch.append(line);
}

std::string take_complete_lines(std::string& unfinished, std::string_view bytes) {
  std::string batch;
  size_t end = bytes.find('\n');
  if (end != bytes.npos) batch.reserve(unfinished.size() + bytes.size());
  while (end != bytes.npos) {
    if (unfinished.empty()) {
      append_line(batch, bytes.substr(0, end));
    } else {
      unfinished.append(bytes.substr(0, end));
      append_line(batch, unfinished);
      // Not clear(), which would keep the memory of a very long line.
      unfinished = std::string();
    }
    bytes.remove_prefix(end + 1);
    end = bytes.find('\n');
  }
  unfinished.append(bytes);
  return batch;
}

static bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The length that a lead byte announces; 0 for a byte that can't lead.
static size_t announced_length(unsigned char lead) {
  if (lead == 0x00) return 0;
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  if (lead < 0xF8) return 4;
  return 0;
}

// The length of the good sequence at the start of `text`; 0 for a bad one.
static size_t sequence_length(std::string_view text) {
  const size_t length = announced_length(static_cast<unsigned char>(text.front()));
  if (length > text.size()) return 0;
  for (size_t index = 1; index < length; ++index) {
    if (!is_continuation(text[index])) return 0;
  }
  return length;
}

static size_t good_prefix_length(std::string_view text) {
  size_t position = 0;
  while (position < text.size()) {
    // Logs are mostly ASCII, and this is most of the work.
    if (static_cast<signed char>(text[position]) > 0) {
      ++position;
      continue;
    }
    const size_t length = sequence_length(text.substr(position));
    if (length == 0) break;
    position += length;
  }
  return position;
}

std::string repair_utf8(std::string text) {
  size_t good = good_prefix_length(text);
  if (good == text.size()) return text;
  std::string repaired;
  repaired.reserve(text.size() + text.size() / 2);
  std::string_view rest = text;
  while (good < rest.size()) {
    repaired.append(rest.substr(0, good)).append(k_replacement);
    rest.remove_prefix(good + 1);
    good = good_prefix_length(rest);
  }
  repaired.append(rest);
  return repaired;
}
