#include "flutter_embedding/preview/reply_values.h"

namespace preview {
namespace {

FlValue* value_at(FlValue* map, const char* key, FlValueType type) {
  if (map == nullptr || fl_value_get_type(map) != FL_VALUE_TYPE_MAP) return nullptr;
  FlValue* value = fl_value_lookup_string(map, key);
  return value != nullptr && fl_value_get_type(value) == type ? value : nullptr;
}

}  // namespace

std::optional<bool> bool_at(FlValue* map, const char* key) {
  FlValue* value = value_at(map, key, FL_VALUE_TYPE_BOOL);
  if (value == nullptr) return std::nullopt;
  return fl_value_get_bool(value);
}

std::optional<std::string> string_at(FlValue* map, const char* key) {
  FlValue* value = value_at(map, key, FL_VALUE_TYPE_STRING);
  if (value == nullptr) return std::nullopt;
  g_autofree char* text = g_utf8_make_valid(fl_value_get_string(value), -1);
  return std::string(text);
}

}  // namespace preview
