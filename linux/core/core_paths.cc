#include "core/core_paths.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "core/core_process.h"
#include "support/files.h"
#include "support/shell_command.h"

static constexpr size_t k_max_path_size = 4095;

static bool is_usable_core(const std::string& path) {
  return path_exists(path) && access(path.c_str(), X_OK) == 0;
}

std::string find_zant_binary() {
  const std::string name = k_core_name;
  const std::string candidates[] = {
      first_output_line("command -v " + name + " 2>/dev/null", k_max_path_size),
      get_executable_dir() + "/bin/" + name,
      "/opt/corvana/bin/" + name,
      "/usr/local/bin/" + name,
  };
  for (const std::string& candidate : candidates) {
    if (is_usable_core(candidate)) return candidate;
  }
  return "";
}

static std::string fallback_dir() { return "/tmp/corvana-" + std::to_string(getuid()); }

static std::string data_root() {
  const char* const data_home = std::getenv("XDG_DATA_HOME");
  if (data_home != nullptr && *data_home != '\0') return std::string(data_home) + "/Corvana";
  const char* const home = std::getenv("HOME");
  if (home != nullptr) return std::string(home) + "/.local/share/Corvana";
  return fallback_dir();
}

std::string get_user_runtime_dir() {
  std::string candidate = data_root() + "/run";
  std::error_code error;
  std::filesystem::create_directories(candidate, error);
  if (!error && access(candidate.c_str(), W_OK) == 0) return candidate;
  std::error_code ignored;
  std::filesystem::create_directories(fallback_dir(), ignored);
  return fallback_dir();
}

std::string runtime_log_in(const std::string& runtime_dir) { return runtime_dir + "/runtime.log"; }

std::string runtime_log_path() { return runtime_log_in(get_user_runtime_dir()); }
