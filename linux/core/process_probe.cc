#include "core/process_probe.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "support/unique_fd.h"

static bool is_process_entry(const dirent& entry) {
  if (entry.d_type != DT_DIR) return false;
  return entry.d_name[strspn(entry.d_name, "0123456789")] == '\0';
}

// Reads the first line of `fd` into `buffer`, which grows when a command line is longer and is kept
// for the next process. A short read of a /proc file is its end.
static std::string_view read_first_line_into(std::vector<char>& buffer, int fd) {
  size_t length = 0;
  while (true) {
    const ssize_t count = read(fd, buffer.data() + length, buffer.size() - length);
    if (count <= 0) break;
    length += static_cast<size_t>(count);
    if (length < buffer.size()) break;
    buffer.resize(buffer.size() * 2);
  }
  const std::string_view text(buffer.data(), length);
  return text.substr(0, text.find('\n'));
}

bool is_process_running(const std::string& name) {
  const std::unique_ptr<DIR, int (*)(DIR*)> processes(opendir("/proc"), closedir);
  if (!processes) return false;
  std::vector<char> buffer(4096);
  while (const dirent* entry = readdir(processes.get())) {
    if (!is_process_entry(*entry)) continue;
    const std::string path = std::string(entry->d_name) + "/cmdline";
    const UniqueFd cmdline(openat(dirfd(processes.get()), path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!cmdline) continue;
    const std::string_view line = read_first_line_into(buffer, cmdline.get());
    if (line.find(name) != line.npos) return true;
  }
  return false;
}
