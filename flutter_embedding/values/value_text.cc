#include "flutter_embedding/values/value.h"

namespace {

std::string text_of(const FlValue& value);

std::string text_of(std::monostate) { return "null"; }

std::string text_of(bool flag) { return flag ? "true" : "false"; }

std::string text_of(const std::string& text) { return text; }

// The C locale's decimal point, whatever the user's locale has.
std::string text_of(double number) {
  char buffer[G_ASCII_DTOSTR_BUF_SIZE];
  return g_ascii_dtostr(buffer, sizeof buffer, number);
}

template <typename Integer>
std::string text_of(Integer number) {
  return std::to_string(number);
}

std::string text_of(float number) { return text_of(static_cast<double>(number)); }

std::string text_of(const ValueRef& value) { return text_of(*value); }

std::string text_of(const ValueMap::value_type& entry) {
  return text_of(entry.first) + ": " + text_of(entry.second);
}

template <typename Elements>
std::string joined(const Elements& elements) {
  std::string text;
  const char* separator = "";
  for (const auto& element : elements) {
    text += separator + text_of(element);
    separator = ", ";
  }
  return text;
}

template <typename Element>
std::string text_of(const std::vector<Element>& elements) {
  return "[" + joined(elements) + "]";
}

std::string text_of(const ValueMap& entries) { return "{" + joined(entries) + "}"; }

std::string text_of(const FlValue& value) {
  return std::visit([](const auto& content) { return text_of(content); }, value.content);
}

}  // namespace

gchar* fl_value_to_string(FlValue* value) {
  g_return_val_if_fail(value != nullptr, nullptr);
  return g_strdup(text_of(*value).c_str());
}
