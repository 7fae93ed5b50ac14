#include "system_proxy/proxy_env_files.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "support/files.h"
#include "system_proxy/proxy_env_text.h"

// The directory below the home directory, made when it is missing; nothing when HOME is unset. A
// directory that can't be made shows when the file in it can't be opened.
static std::optional<std::string> make_config_dir(const std::string& name) {
  const char* const home = std::getenv("HOME");
  if (home == nullptr) return std::nullopt;
  const std::string dir = std::string(home) + "/.config/" + name;
  std::error_code ignored;
  std::filesystem::create_directories(dir, ignored);
  return dir;
}

void write_systemd_environment_dropin(int http_port, int socks_port, bool enable) {
  const auto dir = make_config_dir("environment.d");
  if (!dir) return;
  const std::string path = *dir + "/99-corvana.conf";
  if (enable) {
    write_whole_file(path, environment_dropin_text(http_port, socks_port));
  } else if (path_exists(path)) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
}

void write_proxy_env_file(int http_port, int socks_port, bool enable) {
  const auto dir = make_config_dir("corvana");
  if (!dir) return;
  const std::string path = *dir + "/proxy.sh";
  const std::string text =
      enable ? proxy_script_text(http_port, socks_port) : proxy_script_reset_text();
  if (write_whole_file(path, text)) chmod(path.c_str(), 0644);
}
