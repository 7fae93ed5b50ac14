#include "core/start_request.h"

static FlValue* lookup(FlValue* args, const char* key, FlValueType type) {
  if (args == nullptr || fl_value_get_type(args) != FL_VALUE_TYPE_MAP) return nullptr;
  FlValue* const value = fl_value_lookup_string(args, key);
  if (value == nullptr || fl_value_get_type(value) != type) return nullptr;
  return value;
}

StartRequest read_start_request(FlValue* args) {
  StartRequest request;
  if (FlValue* const path = lookup(args, "configPath", FL_VALUE_TYPE_STRING)) {
    const gchar* const text = fl_value_get_string(path);
    if (text != nullptr) request.config_path = text;
  }
  if (FlValue* const mode = lookup(args, "proxyMode", FL_VALUE_TYPE_INT)) {
    request.proxy_mode = static_cast<int32_t>(fl_value_get_int(mode));
  }
  return request;
}
