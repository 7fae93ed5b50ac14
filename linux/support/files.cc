#include "support/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "support/unique_fd.h"

static constexpr size_t k_chunk_size = size_t{64} * 1024;
static constexpr size_t k_max_text_size = size_t{64} * 1024 * 1024;

std::string get_executable_dir() {
  char target[4096];
  const ssize_t length = readlink("/proc/self/exe", target, sizeof target);
  if (length < 0) return ".";
  const std::string path(target, static_cast<size_t>(length));
  return path.substr(0, path.rfind('/'));
}

bool path_exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::status(path, error));
}

// Non-blocking, so that a named pipe in a file's place reads as an empty file instead of blocking.
static int open_for_reading(const std::string& path) {
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

// Hands on up to `limit` bytes. A read error is like the end of the file.
static void read_chunks(int file, size_t limit, const std::function<void(std::string_view)>& take) {
  std::vector<char> chunk(k_chunk_size);
  while (limit > 0) {
    const ssize_t count = read(file, chunk.data(), std::min(limit, chunk.size()));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    take(std::string_view(chunk.data(), static_cast<size_t>(count)));
    limit -= static_cast<size_t>(count);
  }
}

std::optional<std::string> read_whole_file(const std::string& path) {
  const UniqueFd file(open_for_reading(path));
  if (!file) return std::nullopt;
  std::string text;
  read_chunks(file.get(), k_max_text_size, [&text](std::string_view chunk) { text.append(chunk); });
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

// A regular file is read up to its present size, because a log may grow as fast as it is read.
// Anything else, such as a device, may have no end.
static size_t size_to_read(int file) {
  struct stat status = {};
  const bool is_file = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
  return is_file ? static_cast<size_t>(status.st_size) : k_max_text_size;
}

// Where the last `max_lines` lines begin; 0 when there are no others before them.
static size_t start_of_last_lines(std::string_view text, size_t max_lines) {
  size_t end = text.size();
  if (end > 0 && text.back() == '\n') --end;
  for (size_t lines = 0; lines < max_lines; ++lines) {
    const void* const line_feed = memrchr(text.data(), '\n', end);
    if (line_feed == nullptr) return 0;
    end = static_cast<size_t>(static_cast<const char*>(line_feed) - text.data());
  }
  return end + 1;
}

std::string read_file_tail(const std::string& path, size_t max_lines) {
  const UniqueFd file(open_for_reading(path));
  if (!file || max_lines == 0) return "";
  std::string tail;
  size_t trim_size = k_chunk_size;
  read_chunks(file.get(), size_to_read(file.get()), [&](std::string_view chunk) {
    const size_t start = start_of_last_lines(chunk, max_lines);
    if (start > 0) tail.clear();
    tail.append(chunk.substr(start));
    if (tail.size() < trim_size) return;
    tail.erase(0, start_of_last_lines(tail, max_lines));
    // Doubled, so that a very long line isn't searched again with every chunk.
    trim_size = std::max(k_chunk_size, 2 * tail.size());
  });
  tail.erase(0, start_of_last_lines(tail, max_lines));
  if (!tail.empty() && tail.back() != '\n') tail.push_back('\n');
  return tail;
}
