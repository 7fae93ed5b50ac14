#include "flutter_embedding/codec/wire_format.h"

#include <glib.h>

bool is_utf8(const char* text, size_t size) {
  const char* const end = text + size;
  const char* rest = text;
  while (!g_utf8_validate_len(rest, static_cast<size_t>(end - rest), &rest)) {
    if (rest == end || *rest != '\0') {
      return false;
    }
    ++rest;
  }
  return true;
}
