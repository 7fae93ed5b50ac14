#include "log_stream/log_lines.h"

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
      // Not clear(): one endless line would keep its memory for as long as the host runs.
      unfinished = std::string();
    }
    bytes.remove_prefix(end + 1);
    end = bytes.find('\n');
  }
  unfinished.append(bytes);
  return batch;
}
