#include "flutter_embedding/preview/runner/preview_options.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>

namespace preview {
namespace {

constexpr std::array<const char*, 3> k_pages = {"connection", "log", "diagnostics"};

// What GLib's parser fills in; it owns nothing of it.
struct RawOptions {
  char* config = nullptr;
  int proxy_mode = static_cast<int>(ProxyMode::set_system_proxy);
  gboolean connect = FALSE;
  char* page = nullptr;
  char* screenshot = nullptr;
  gboolean quit = FALSE;

  RawOptions() = default;
  RawOptions(const RawOptions&) = delete;
  RawOptions& operator=(const RawOptions&) = delete;
  ~RawOptions() {
    g_free(config);
    g_free(page);
    g_free(screenshot);
  }
};

using Strv = std::unique_ptr<char*, decltype(&g_strfreev)>;

// The parser skips the first element, which is a program's name elsewhere.
char** copy_behind_a_name(char** arguments) {
  GPtrArray* copy = g_ptr_array_new();
  g_ptr_array_add(copy, g_strdup("corvana"));
  for (char** argument = arguments; argument != nullptr && *argument != nullptr; ++argument) {
    g_ptr_array_add(copy, g_strdup(*argument));
  }
  g_ptr_array_add(copy, nullptr);
  return reinterpret_cast<char**>(g_ptr_array_free(copy, FALSE));
}

std::string parse_into(RawOptions& raw, char** arguments) {
  const GOptionEntry entries[] = {
      {"config", 0, 0, G_OPTION_ARG_FILENAME, &raw.config, nullptr, nullptr},
      {"proxy-mode", 0, 0, G_OPTION_ARG_INT, &raw.proxy_mode, nullptr, nullptr},
      {"connect", 0, 0, G_OPTION_ARG_NONE, &raw.connect, nullptr, nullptr},
      {"page", 0, 0, G_OPTION_ARG_STRING, &raw.page, nullptr, nullptr},
      {"screenshot", 0, 0, G_OPTION_ARG_FILENAME, &raw.screenshot, nullptr, nullptr},
      {"quit", 0, 0, G_OPTION_ARG_NONE, &raw.quit, nullptr, nullptr},
      {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr},
  };
  g_autoptr(GOptionContext) context = g_option_context_new(nullptr);
  // GLib's own --help would end the host's process.
  g_option_context_set_help_enabled(context, FALSE);
  g_option_context_add_main_entries(context, entries, nullptr);

  char** rest = copy_behind_a_name(arguments);
  g_autoptr(GError) error = nullptr;
  const bool understood = g_option_context_parse_strv(context, &rest, &error);
  const Strv owned_rest(rest, g_strfreev);
  if (!understood) return error->message;
  if (g_strv_length(rest) > 1) return std::string("不认识的参数 ") + rest[1];
  return {};
}

std::string find_bad_value(const RawOptions& raw) {
  if (raw.proxy_mode != static_cast<int>(ProxyMode::set_system_proxy) &&
      raw.proxy_mode != static_cast<int>(ProxyMode::no_system_proxy)) {
    return "--proxy-mode 只能是 1 或 4，不能是 " + std::to_string(raw.proxy_mode);
  }
  const auto is_wanted = [&raw](const char* page) { return g_str_equal(page, raw.page); };
  if (raw.page != nullptr && std::none_of(k_pages.begin(), k_pages.end(), is_wanted)) {
    return std::string("--page 只能是 connection、log 或 diagnostics，不能是 ") + raw.page;
  }
  if (raw.config != nullptr && !g_utf8_validate(raw.config, -1, nullptr)) {
    return std::string("--config 的文件名必须是 UTF-8，不能是 ") + raw.config;
  }
  return {};
}

// The host may run the core from another directory, and the path's field shows UTF-8 only.
std::string absolute_utf8(const char* path) {
  g_autofree char* absolute = g_canonicalize_filename(path, nullptr);
  g_autofree char* utf8 = g_filename_display_name(absolute);
  return utf8;
}

Options from_raw(const RawOptions& raw) {
  Options options;
  if (raw.config != nullptr && *raw.config != '\0') options.config = absolute_utf8(raw.config);
  options.proxy_mode = static_cast<ProxyMode>(raw.proxy_mode);
  options.connect = raw.connect;
  if (raw.page != nullptr) options.page = raw.page;
  if (raw.screenshot != nullptr) options.screenshot = raw.screenshot;
  options.quit = raw.quit;
  return options;
}

}  // namespace

ParsedOptions parse_options(char** arguments) {
  RawOptions raw;
  std::string complaint = parse_into(raw, arguments);
  if (complaint.empty()) complaint = find_bad_value(raw);
  if (complaint.empty()) return {from_raw(raw), {}};
  std::replace(complaint.begin(), complaint.end(), '\n', ' ');
  g_autofree char* utf8 = g_utf8_make_valid(complaint.c_str(), -1);
  Options options;
  // Whoever runs this unattended counts on the end, whatever is wrong with the rest.
  options.quit = arguments != nullptr && g_strv_contains(arguments, "--quit");
  return {options, utf8};
}

}  // namespace preview
