#include "proxy_service/reply_map.h"

void set_bool(FlValue* map, const char* key, bool value) {
  fl_value_set_string_take(map, key, fl_value_new_bool(value));
}

void set_text(FlValue* map, const char* key, const std::string& bytes) {
  g_autofree gchar* text = g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size()));
  fl_value_set_string_take(map, key, fl_value_new_string(text));
}
