// The port searches find what one regular expression for each port finds.
#include <glib.h>

#include "core/core_config.h"
#include "fuzz/fuzzer.h"

static const auto k_flags = GRegexCompileFlags(G_REGEX_RAW | G_REGEX_DOTALL | G_REGEX_OPTIMIZE);
static const GRegex* const k_clash_api = g_regex_new(
    R"re(\A(?>.*?external_controller)[^"]*+"[ \t\r\n:]*+"[^":]*+:[\t-\r ]*+([+-]?\d++)[^"]*+")re",
    k_flags, {}, nullptr);
static const GRegex* const k_mixed =
    g_regex_new(R"re(\A(?>.*?"mixed")(?>.*?listen_port)[\t ":]*+(\d++))re", k_flags, {}, nullptr);

static int matched_port(const GRegex* regex, const std::string& text) {
  g_autoptr(GMatchInfo) match = nullptr;
  const auto size = static_cast<gssize>(text.size());
  if (!g_regex_match_full(regex, text.data(), size, 0, {}, &match, nullptr)) return 0;
  g_autofree gchar* digits = g_match_info_fetch(match, 1);
  const gint64 number = g_ascii_strtoll(digits, nullptr, 10);
  return number == static_cast<int>(number) ? static_cast<int>(number) : 0;
}

void try_input(FuzzedDataProvider& input) {
  // The bytes 0x80 to 0x82 stand for the keys: random changes would break keys that are spelled
  // out.
  static const char* const keys[] = {"external_controller", "\"mixed\"", "listen_port"};
  std::string config;
  for (const char byte : input.ConsumeRemainingBytesAsString()) {
    const int key = static_cast<unsigned char>(byte) - 0x80;
    config += key >= 0 && key < 3 ? keys[key] : std::string(1, byte);
  }
  require(clash_api_port(config) == matched_port(k_clash_api, config));
  require(mixed_port(config) == matched_port(k_mixed, config));
}
