#include "support/files.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "support/unique_fd.h"

static constexpr size_t k_chunk_size = size_t{64} * 1024;
static constexpr size_t k_longest_text = size_t{64} * 1024 * 1024;

bool path_exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::status(path, error));
}

// Non-blocking, so that a named pipe in a file's place ends in an error instead of a wait for ever.
static int open_for_reading(const std::string& path) {
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

// As read(2), but a signal doesn't interrupt it. 0 at the end and on an error.
static size_t read_chunk(int fd, char* buffer, size_t size) {
  ssize_t count;
  do {
    count = read(fd, buffer, size);
  } while (count < 0 && errno == EINTR);
  return count < 0 ? 0 : static_cast<size_t>(count);
}

std::optional<std::string> read_whole_file(const std::string& path) {
  const UniqueFd file(open_for_reading(path));
  if (!file) return std::nullopt;
  std::string text;
  std::vector<char> chunk(k_chunk_size);
  while (text.size() < k_longest_text) {
    const size_t count = read_chunk(file.get(), chunk.data(), chunk.size());
    if (count == 0) break;
    text.append(chunk.data(), count);
  }
  return text;
}

bool write_whole_file(const std::string& path, const std::string& text) {
  const int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK;
  const UniqueFd file(open(path.c_str(), flags, 0666));
  if (!file) return false;
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t count = write(file.get(), rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return true;
    rest.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

namespace {

// The newest lines of a stream of chunks, and the start of a line that has no end yet.
class LineTail {
 public:
  explicit LineTail(size_t max_lines) : max_lines_(max_lines) {}

  void add_chunk(std::string_view chunk) {
    skip_lines_that_fall_out(chunk);
    for (size_t end = chunk.find('\n'); end != chunk.npos; end = chunk.find('\n')) {
      unfinished_.append(chunk.substr(0, end));
      finish_line();
      chunk.remove_prefix(end + 1);
    }
    unfinished_.append(chunk);
  }

  std::string joined() {
    if (!unfinished_.empty()) finish_line();
    std::string text;
    for (const std::string& line : lines_) text.append(line).push_back('\n');
    return text;
  }

 private:
  // Lines with max_lines_ others behind them in the same chunk can't be in the tail, nor can
  // anything read before: finding that out from the back leaves most of a long log unsplit.
  void skip_lines_that_fall_out(std::string_view& chunk) {
    size_t end = chunk.size();
    for (size_t newer_lines = 0; newer_lines <= max_lines_; ++newer_lines) {
      const void* found = memrchr(chunk.data(), '\n', end);
      if (found == nullptr) return;
      end = static_cast<size_t>(static_cast<const char*>(found) - chunk.data());
    }
    chunk.remove_prefix(end + 1);
    lines_.clear();
    unfinished_.clear();
  }

  void finish_line() {
    if (lines_.size() == max_lines_) lines_.pop_front();
    lines_.push_back(std::move(unfinished_));
    unfinished_.clear();
  }

  const size_t max_lines_;
  std::deque<std::string> lines_;
  std::string unfinished_;
};

}  // namespace

std::string read_file_tail(const std::string& path, size_t max_lines) {
  const UniqueFd file(open_for_reading(path));
  if (!file || max_lines == 0) return "";
  LineTail tail(max_lines);
  std::vector<char> chunk(k_chunk_size);
  while (const size_t count = read_chunk(file.get(), chunk.data(), chunk.size())) {
    tail.add_chunk(std::string_view(chunk.data(), count));
  }
  return tail.joined();
}
