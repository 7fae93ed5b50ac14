#include "executable_dir.h"

#include <unistd.h>

std::string get_executable_dir() {
  char target[4096];
  const ssize_t length = readlink("/proc/self/exe", target, sizeof target);
  if (length < 0) return ".";
  const std::string path(target, static_cast<size_t>(length));
  return path.substr(0, path.rfind('/'));
}
