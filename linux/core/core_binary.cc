#include "core/core_binary.h"

#include <unistd.h>

#include "core/core_process.h"
#include "support/files.h"
#include "support/shell_command.h"

static constexpr size_t k_path_buffer_size = 4096;

static bool is_usable_core(const std::string& path) {
  return path_exists(path) && access(path.c_str(), X_OK) == 0;
}

std::string find_zant_binary() {
  const std::string name = k_core_name;
  const std::string candidates[] = {
      first_output_line("command -v " + name + " 2>/dev/null", k_path_buffer_size),
      get_executable_dir() + "/bin/" + name,
      "/opt/corvana/bin/" + name,
      "/usr/local/bin/" + name,
  };
  for (const std::string& candidate : candidates) {
    if (is_usable_core(candidate)) return candidate;
  }
  return "";
}
