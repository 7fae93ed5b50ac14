#include "flutter_embedding/preview/runner/default_config.h"

#include <glib.h>
#include <glib/gstdio.h>

#include <cstring>
#include <nlohmann/json.hpp>

namespace preview {
namespace {

constexpr goffset k_max_config_size = goffset{4} << 20;

std::string default_config_dir() {
  g_autofree char* dir = g_build_filename(g_get_user_config_dir(), "corvana", nullptr);
  // An empty HOME makes it a relative one.
  g_autofree char* absolute = g_canonicalize_filename(dir, nullptr);
  return absolute;
}

// Reading a device or a pipe could block the window.
bool is_small_regular_file(const std::string& path) {
  GStatBuf status;
  return g_stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         status.st_size <= k_max_config_size;
}

std::optional<int> mixed_port_of_inbound(const nlohmann::json& inbound) {
  if (!inbound.is_object()) return std::nullopt;
  const auto type = inbound.find("type");
  if (type == inbound.end() || *type != "mixed") return std::nullopt;
  const auto port = inbound.find("listen_port");
  if (port == inbound.end() || !port->is_number_integer()) return std::nullopt;
  const auto number = port->get<std::int64_t>();
  if (number < 1 || number > 65535) return std::nullopt;
  return static_cast<int>(number);
}

}  // namespace

std::string default_config_path() {
  g_autofree char* path = g_build_filename(default_config_dir().c_str(), "config.json", nullptr);
  g_autofree char* utf8 = g_filename_display_name(path);
  return utf8;
}

std::string default_config_text() {
  // Ordered: the host takes the first listen_port after the inbound's type, so the type has to come
  // first.
  nlohmann::ordered_json inbound = {
      {"type", "mixed"}, {"tag", "mixed-in"}, {"listen", "127.0.0.1"}, {"listen_port", 7890}};
  nlohmann::ordered_json config;
  config["log"] = {{"level", "info"}, {"timestamp", true}};
  config["inbounds"] = nlohmann::ordered_json::array({inbound});
  config["outbounds"] = nlohmann::ordered_json::array({{{"type", "direct"}, {"tag", "direct"}}});
  config["experimental"]["clash_api"]["external_controller"] = "127.0.0.1:9090";
  return config.dump(2) + "\n";
}

std::string ensure_default_config() {
  g_autofree char* path =
      g_filename_from_utf8(default_config_path().c_str(), -1, nullptr, nullptr, nullptr);
  if (path == nullptr) return "路径不是有效的 UTF-8";
  if (g_file_test(path, G_FILE_TEST_EXISTS)) return {};
  if (g_mkdir_with_parents(default_config_dir().c_str(), 0700) != 0) return g_strerror(errno);
  g_autoptr(GError) error = nullptr;
  const std::string text = default_config_text();
  // Configurations hold passwords.
  if (g_file_set_contents_full(path, text.data(), static_cast<gssize>(text.size()),
                               G_FILE_SET_CONTENTS_CONSISTENT, 0600, &error)) {
    return {};
  }
  return error->message;
}

std::string find_fault_in_config(const std::string& path) {
  if (g_file_test(path.c_str(), G_FILE_TEST_IS_DIR)) return "这是一个文件夹，请选择配置文件";
  if (!is_small_regular_file(path)) return {};
  g_autofree char* text = nullptr;
  if (!g_file_get_contents(path.c_str(), &text, nullptr, nullptr)) return {};
  // Cores also accept comments and other extensions.
  const char* first = text + strspn(text, " \t\r\n");
  return *first == '{' || *first == '/' ? "" : "这不是 JSON 配置文件，请另选一个";
}

std::optional<int> mixed_port_of(const std::string& text) {
  const auto config =
      nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false, /*ignore_comments=*/true);
  if (!config.is_object()) return std::nullopt;
  const auto inbounds = config.find("inbounds");
  if (inbounds == config.end() || !inbounds->is_array()) return std::nullopt;
  for (const auto& inbound : *inbounds) {
    if (const auto port = mixed_port_of_inbound(inbound)) return port;
  }
  return std::nullopt;
}

std::optional<int> mixed_port_of_file(const std::string& path) {
  if (!g_file_test(path.c_str(), G_FILE_TEST_EXISTS) && path == default_config_path()) {
    return mixed_port_of(default_config_text());
  }
  if (!is_small_regular_file(path)) return std::nullopt;
  g_autofree char* text = nullptr;
  gsize size = 0;
  if (!g_file_get_contents(path.c_str(), &text, &size, nullptr)) return std::nullopt;
  return mixed_port_of(std::string(text, size));
}

}  // namespace preview
