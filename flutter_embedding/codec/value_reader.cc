#include <cstring>

#include "flutter_embedding/codec/values_as_bytes.h"

namespace {

ValueRef read_nested(MessageReader& reader, int depth, GError** error);

std::nullptr_t fail(const MessageReader& reader, CodecError code, const char* reason,
                    GError** error) {
  g_set_error(error, codec_error_quark(), code, "%s at byte %" G_GSIZE_FORMAT, reason,
              reader.position);
  return nullptr;
}

bool expect_left(const MessageReader& reader, size_t count, size_t width, GError** error) {
  if (count > reader.left() / width) {
    fail(reader, CODEC_ERROR_TRUNCATED, "The message ends too early", error);
    return false;
  }
  return true;
}

// Copied, because the numbers in a message may be unaligned.
template <typename Number>
bool read_numbers(MessageReader& reader, Number* numbers, size_t count, GError** error) {
  if (!expect_left(reader, count, sizeof(Number), error)) return false;
  if (count > 0) std::memcpy(numbers, reader.bytes + reader.position, count * sizeof(Number));
  reader.position += count * sizeof(Number);
  return true;
}

bool skip_padding(MessageReader& reader, size_t width, GError** error) {
  const size_t padding = (width - reader.position % width) % width;
  if (!expect_left(reader, padding, 1, error)) return false;
  reader.position += padding;
  return true;
}

template <typename Narrow>
bool read_wide_size(MessageReader& reader, size_t* size, GError** error) {
  Narrow narrow = 0;
  if (!read_numbers(reader, &narrow, 1, error)) return false;
  *size = narrow;
  return true;
}

bool read_size(MessageReader& reader, size_t* size, GError** error) {
  uint8_t first = 0;
  if (!read_byte(reader, &first, error)) return false;
  switch (first) {
    case k_two_byte_size_mark:
      return read_wide_size<uint16_t>(reader, size, error);
    case k_four_byte_size_mark:
      return read_wide_size<uint32_t>(reader, size, error);
    default:
      *size = first;
      return true;
  }
}

template <typename Integer>
ValueRef read_integer(MessageReader& reader, GError** error) {
  Integer number = 0;
  if (!read_numbers(reader, &number, 1, error)) return nullptr;
  return value_new(int64_t{number});
}

ValueRef read_float(MessageReader& reader, GError** error) {
  double number = 0;
  if (!skip_padding(reader, sizeof number, error) || !read_numbers(reader, &number, 1, error)) {
    return nullptr;
  }
  return value_new(number);
}

ValueRef read_text(MessageReader& reader, GError** error) {
  size_t size = 0;
  if (!read_size(reader, &size, error) || !expect_left(reader, size, 1, error)) return nullptr;
  std::string text(reinterpret_cast<const char*>(reader.bytes) + reader.position, size);
  reader.position += size;
  return value_new(std::move(text));
}

template <typename Number>
ValueRef read_number_list(MessageReader& reader, GError** error) {
  size_t count = 0;
  if (!read_size(reader, &count, error) || !skip_padding(reader, sizeof(Number), error) ||
      !expect_left(reader, count, sizeof(Number), error)) {
    return nullptr;
  }
  std::vector<Number> numbers(count);
  if (!read_numbers(reader, numbers.data(), count, error)) return nullptr;
  return value_new(std::move(numbers));
}

// The announced count may be wrong, so nothing is reserved: lists and maps grow as they are read.
ValueRef read_list(MessageReader& reader, int depth, GError** error) {
  size_t count = 0;
  if (!read_size(reader, &count, error)) return nullptr;
  ValueRef list(fl_value_new_list());
  for (size_t i = 0; i < count; ++i) {
    ValueRef element = read_nested(reader, depth + 1, error);
    if (element == nullptr) return nullptr;
    fl_value_append_take(list.get(), element.release());
  }
  return list;
}

ValueRef read_map(MessageReader& reader, int depth, GError** error) {
  size_t count = 0;
  if (!read_size(reader, &count, error)) return nullptr;
  ValueRef map(fl_value_new_map());
  for (size_t i = 0; i < count; ++i) {
    ValueRef key = read_nested(reader, depth + 1, error);
    ValueRef value = key == nullptr ? nullptr : read_nested(reader, depth + 1, error);
    if (value == nullptr) return nullptr;
    fl_value_set_take(map.get(), key.release(), value.release());
  }
  return map;
}

ValueRef read_nested(MessageReader& reader, int depth, GError** error) {
  if (depth > k_max_nesting) {
    return fail(reader, CODEC_ERROR_TOO_DEEP, "The value is nested too deep", error);
  }
  uint8_t type = 0;
  if (!read_byte(reader, &type, error)) return nullptr;
  switch (static_cast<WireType>(type)) {
    case WireType::null_value:
      return value_new(std::monostate());
    case WireType::true_value:
      return value_new(true);
    case WireType::false_value:
      return value_new(false);
    case WireType::int32:
      return read_integer<int32_t>(reader, error);
    case WireType::int64:
      return read_integer<int64_t>(reader, error);
    case WireType::float64:
      return read_float(reader, error);
    case WireType::string:
      return read_text(reader, error);
    case WireType::uint8_list:
      return read_number_list<uint8_t>(reader, error);
    case WireType::int32_list:
      return read_number_list<int32_t>(reader, error);
    case WireType::int64_list:
      return read_number_list<int64_t>(reader, error);
    case WireType::float64_list:
      return read_number_list<double>(reader, error);
    case WireType::float32_list:
      return read_number_list<float>(reader, error);
    case WireType::list:
      return read_list(reader, depth, error);
    case WireType::map:
      return read_map(reader, depth, error);
  }
  return fail(reader, CODEC_ERROR_UNKNOWN_TYPE, "Unknown type before the value", error);
}

}  // namespace

bool read_byte(MessageReader& reader, uint8_t* byte, GError** error) {
  return read_numbers(reader, byte, 1, error);
}

ValueRef read_value(MessageReader& reader, GError** error) { return read_nested(reader, 0, error); }

ValueRef read_string(MessageReader& reader, GError** error) {
  ValueRef value = read_value(reader, error);
  if (value != nullptr && fl_value_get_type(value.get()) != FL_VALUE_TYPE_STRING) {
    return fail(reader, CODEC_ERROR_UNEXPECTED_TYPE, "No string before the value", error);
  }
  return value;
}

bool expect_end(const MessageReader& reader, GError** error) {
  if (reader.left() > 0) {
    fail(reader, CODEC_ERROR_TRAILING_BYTES, "The value ends before the message", error);
    return false;
  }
  return true;
}
