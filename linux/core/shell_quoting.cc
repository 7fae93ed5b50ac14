#include "core/shell_quoting.h"

#include <string_view>

static constexpr std::string_view k_escaped = " \"$&'();<>[\\]`|";

std::string escape_path(const std::string& path) {
  std::string escaped;
  escaped.reserve(2 * path.size());
  for (const char byte : path) {
    if (k_escaped.find(byte) != k_escaped.npos) escaped.push_back('\\');
    escaped.push_back(byte);
  }
  return escaped;
}
