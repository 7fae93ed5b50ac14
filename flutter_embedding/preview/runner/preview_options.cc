#include "flutter_embedding/preview/runner/preview_options.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <vector>

namespace preview {
namespace {

constexpr std::array<const char*, 3> k_pages = {"connection", "log", "diagnostics"};

// What GLib's parser fills in.
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

// Returns an error message, or an empty string. The parser skips the first word, as a program's
// name.
std::string parse_into(RawOptions& raw, std::vector<char*> words) {
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
  auto count = static_cast<int>(words.size());
  words.push_back(nullptr);
  char** rest = words.data();
  g_autoptr(GError) error = nullptr;
  if (!g_option_context_parse(context, &count, &rest, &error)) return error->message;
  return count > 1 ? std::string("不认识的参数 ") + rest[1] : "";
}

// Parses each option by itself, with the value behind it, so that a wrong one doesn't affect the
// others. Returns the first error message, or an empty string.
std::string parse_each(RawOptions& raw, char** arguments) {
  static char program[] = "corvana";
  std::vector<char*> understood = {program};
  std::string complaint;
  while (arguments != nullptr && *arguments != nullptr) {
    std::vector<char*> option = {program};
    do {
      option.push_back(*arguments++);
    } while (*arguments != nullptr && !g_str_has_prefix(*arguments, "-"));
    RawOptions scratch;
    const std::string fault = parse_into(scratch, option);
    if (fault.empty()) understood.insert(understood.end(), option.begin() + 1, option.end());
    if (complaint.empty()) complaint = fault;
  }
  parse_into(raw, understood);
  return complaint;
}

std::string drop_bad_page(RawOptions& raw) {
  const auto is_wanted = [&raw](const char* page) { return g_str_equal(page, raw.page); };
  if (raw.page == nullptr || std::any_of(k_pages.begin(), k_pages.end(), is_wanted)) return {};
  g_autofree char* page = g_steal_pointer(&raw.page);
  return std::string("--page 只能是 connection、log 或 diagnostics，不能是 ") + page;
}

std::string find_bad_connection(const RawOptions& raw) {
  if (raw.proxy_mode != static_cast<int>(ProxyMode::set_system_proxy) &&
      raw.proxy_mode != static_cast<int>(ProxyMode::no_system_proxy)) {
    return "--proxy-mode 只能是 1 或 4，不能是 " + std::to_string(raw.proxy_mode);
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
  std::string complaint = parse_each(raw, arguments);
  if (complaint.empty()) complaint = find_bad_connection(raw);
  const bool knows_connection = complaint.empty();
  const std::string bad_page = drop_bad_page(raw);
  if (complaint.empty()) complaint = bad_page;
  Options options = from_raw(raw);
  if (!knows_connection) {
    options.config.clear();
    options.proxy_mode = ProxyMode::set_system_proxy;
    options.connect = false;
  }
  std::replace(complaint.begin(), complaint.end(), '\n', ' ');
  g_autofree char* utf8 = g_utf8_make_valid(complaint.c_str(), -1);
  return {options, utf8};
}

}  // namespace preview
