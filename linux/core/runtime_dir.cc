#include "core/runtime_dir.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

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
