#include "core/core_config.h"

#include <stdexcept>

static constexpr auto k_none = std::string::npos;

static int number_at_start(const std::string& text) {
  try {
    return std::stoi(text);
  } catch (const std::logic_error&) {  // no digits, or out of range
    return 0;
  }
}

int clash_api_port(const std::string& config) {
  const std::string key = "external_controller";
  const size_t key_start = config.find(key);
  if (key_start == k_none) return 0;
  const size_t key_quote = config.find('"', key_start + key.size());
  if (key_quote == k_none) return 0;
  const size_t value_quote = config.find_first_not_of(" \t\r\n:", key_quote + 1);
  if (value_quote == k_none || config[value_quote] != '"') return 0;
  const size_t value_start = value_quote + 1;
  const size_t value_end = config.find('"', value_start);
  if (value_end == k_none) return 0;
  const std::string value = config.substr(value_start, value_end - value_start);
  const size_t colon = value.find(':');
  return colon == k_none ? 0 : number_at_start(value.substr(colon + 1));
}

int mixed_port(const std::string& config) {
  const std::string key = "listen_port";
  const size_t type_start = config.find("\"mixed\"");
  if (type_start == k_none) return 0;
  const size_t key_start = config.find(key, type_start);
  if (key_start == k_none) return 0;
  // Unlike above, a line break ends the search for the number.
  const size_t number_start = config.find_first_not_of("\t \":", key_start + key.size());
  if (number_start == k_none) return 0;
  const size_t number_end = config.find_first_not_of("0123456789", number_start);
  return number_at_start(config.substr(number_start, number_end - number_start));
}
