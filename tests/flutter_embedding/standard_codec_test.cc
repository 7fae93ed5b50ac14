#include "flutter_embedding/codec/standard_codec.h"

#include <gtest/gtest.h>

#include "flutter_embedding/codec/values_as_bytes.h"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytes_of(GBytes* message) {
  size_t size = 0;
  const auto* data = static_cast<const uint8_t*>(g_bytes_get_data(message, &size));
  return Bytes(data, data + size);
}

GBytes* message_of(const Bytes& bytes) { return g_bytes_new(bytes.data(), bytes.size()); }

// The decoded value as text, and the bytes that it encodes to.
std::pair<std::string, Bytes> read_and_write(const Bytes& bytes) {
  g_autoptr(GBytes) message = message_of(bytes);
  const ValueRef value = decode_value(message, nullptr);
  if (value == nullptr) return {"no value", {}};
  g_autofree gchar* text = fl_value_to_string(value.get());
  g_autoptr(GBytes) encoded = encode_value(value.get(), nullptr);
  return {text, bytes_of(encoded)};
}

TEST(StandardCodec, BytesAndTheirValues) {
  std::vector<std::pair<Bytes, std::string>> rows = {
      {{13, 2, 7, 1, 'b', 1, 2, 0}, "{b: true, false: null}"},
      {{3, 0xfe, 0xff, 0xff, 0xff}, "-2"},
      {{4, 0, 0, 0, 0x80, 0, 0, 0, 0}, "2147483648"},
      {{6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xf8, 0x3f}, "1.5"},
      {{7, 3, 'a', 0, 'b'}, "a"},
      {{7, 2, 0xff, 0xc1}, "\xff\xc1"},
      {{8, 2, 1, 255}, "[1, 255]"},
      {{9, 2, 0, 0, 1, 0, 0, 0, 0xfe, 0xff, 0xff, 0xff}, "[1, -2]"},
      {{10, 1, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, "[2]"},
      {{11, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xf8, 0x3f}, "[1.5]"},
      {{14, 1, 0, 0, 0, 0, 0xc0, 0x3f}, "[1.5]"},
      // Padding counts from the start of the message, not of the value.
      {{12, 2, 7, 2, 'a', 'b', 6, 0, 0, 0, 0, 0, 0, 0, 0xf8, 0x3f}, "[ab, 1.5]"},
  };
  // Sizes take one, three or five bytes.
  const Bytes heads[] = {{7, 253}, {7, 254, 254, 0}, {7, 254, 255, 255}, {7, 255, 0, 0, 1, 0}};
  const size_t sizes[] = {253, 254, 65535, 65536};
  for (size_t i = 0; i < std::size(sizes); ++i) {
    rows.emplace_back(heads[i], std::string(sizes[i], 'x'));
    rows.back().first.insert(rows.back().first.end(), sizes[i], 'x');
  }
  for (const auto& [bytes, text] : rows) EXPECT_EQ(read_and_write(bytes), std::pair(text, bytes));
  // A key that comes again, here in eight bytes, gives its value to the first one's place.
  const Bytes twice = {13, 3, 3, 7, 0, 0, 0, 1, 0, 0, 4, 7, 0, 0, 0, 0, 0, 0, 0, 2};
  EXPECT_EQ(read_and_write(twice).first, "{7: false, null: null}");
}

TEST(StandardCodec, WhatIsMalformedIsNeitherReadNorWritten) {
  const std::pair<Bytes, CodecError> rows[] = {
      {{11, 255, 0xff, 0xff, 0xff, 0xff, 0, 0, 0}, CODEC_ERROR_TRUNCATED},
      {Bytes(1000000, 12), CODEC_ERROR_TOO_DEEP},
      {{5}, CODEC_ERROR_UNKNOWN_TYPE},
      {{0, 0}, CODEC_ERROR_TRAILING_BYTES},
  };
  for (const auto& [bytes, code] : rows) {
    g_autoptr(GBytes) message = message_of(bytes);
    g_autoptr(GError) error = nullptr;
    ASSERT_EQ(decode_value(message, &error), nullptr);
    EXPECT_TRUE(g_error_matches(error, codec_error_quark(), code)) << error->message;
  }
  ValueRef nested(fl_value_new_null());
  for (int depth = 0; depth <= k_max_nesting + 1; ++depth) {
    g_autoptr(GBytes) encoded = encode_value(nested.get(), nullptr);
    EXPECT_EQ(encoded != nullptr && decode_value(encoded, nullptr), depth <= k_max_nesting);
    ValueRef inner = std::exchange(nested, ValueRef(fl_value_new_list()));
    fl_value_append_take(nested.get(), inner.release());
  }
}

}  // namespace
