#include "proxy_service/text_value.h"

void set_text(FlValue* map, const char* key, const std::string& bytes) {
  g_autofree gchar* text = g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size()));
  fl_value_set_string_take(map, key, fl_value_new_string(text));
}
