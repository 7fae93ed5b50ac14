#include "config.h"

#include <gio/gio.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

static constexpr char k_loopback[] = "127.0.0.1";

static std::optional<json> read_json(const std::string& path, std::string* error) {
  g_autofree char* text = nullptr;
  gsize length = 0;
  g_autoptr(GError) read_error = nullptr;
  if (!g_file_get_contents(path.c_str(), &text, &length, &read_error)) {
    *error = std::string("cannot read the configuration: ") + read_error->message;
    return std::nullopt;
  }
  try {
    return json::parse(text, text + length);
  } catch (const json::exception& parse_error) {
    *error = "the configuration " + path + " is not JSON: " + parse_error.what();
    return std::nullopt;
  }
}

static const json* find_key(const json& object, const char* key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(key);
  return found == object.end() ? nullptr : &*found;
}

static bool is_mixed(const json& inbound) {
  const json* type = find_key(inbound, "type");
  return type != nullptr && *type == "mixed";
}

static std::optional<Endpoint> read_mixed_inbound(const json& inbound, std::string* error) {
  const json* listen = find_key(inbound, "listen");
  if (listen != nullptr && !listen->is_string()) {
    *error = "\"listen\" of the mixed inbound must be an IP address, not " + listen->dump();
    return std::nullopt;
  }
  const json* port = find_key(inbound, "listen_port");
  if (port == nullptr || !port->is_number_unsigned() || *port < 1 || *port > G_MAXUINT16) {
    *error = "\"listen_port\" of the mixed inbound must be a number from 1 to 65535";
    return std::nullopt;
  }
  return Endpoint{listen == nullptr ? k_loopback : listen->get<std::string>(),
                  port->get<uint16_t>()};
}

static bool read_mixed_inbounds(const json& root, CoreConfig* config, std::string* error) {
  const json* inbounds = find_key(root, "inbounds");
  if (inbounds != nullptr && inbounds->is_array()) {
    for (const json& inbound : *inbounds) {
      if (!is_mixed(inbound)) continue;
      const std::optional<Endpoint> endpoint = read_mixed_inbound(inbound, error);
      if (!endpoint) return false;
      config->mixed.push_back(*endpoint);
    }
  }
  if (config->mixed.empty()) *error = "the configuration has no inbound of the type \"mixed\"";
  return !config->mixed.empty();
}

static bool read_clash_api(const json& root, CoreConfig* config, std::string* error) {
  const json* experimental = find_key(root, "experimental");
  const json* section = experimental == nullptr ? nullptr : find_key(*experimental, "clash_api");
  const json* controller = section == nullptr ? nullptr : find_key(*section, "external_controller");
  if (controller == nullptr || *controller == json("")) return true;

  if (controller->is_string()) {
    const std::string text = controller->get<std::string>();
    config->clash_api = parse_endpoint(text[0] == ':' ? k_loopback + text : text, 0);
  }
  if (config->clash_api) return true;
  *error = "\"external_controller\" must be an address and a port, not " + controller->dump();
  return false;
}

std::optional<CoreConfig> load_config(const std::string& path, std::string* error) {
  const std::optional<json> root = read_json(path, error);
  if (!root) return std::nullopt;
  CoreConfig config;
  if (!read_mixed_inbounds(*root, &config, error)) return std::nullopt;
  if (!read_clash_api(*root, &config, error)) return std::nullopt;
  return config;
}
