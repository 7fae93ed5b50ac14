// The bytes of a value: the type's byte and what follows it, how deep values may be nested, and the
// functions that read and write them. Any thread. On failure they give null or false and a
// CodecError.

#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_VALUES_AS_BYTES_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_VALUES_AS_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "flutter_embedding/values/value.h"

// Why bytes can't be decoded, or a value can't be encoded.
enum CodecError {
  CODEC_ERROR_TRUNCATED,        // the message ends early, or a size reaches beyond its end
  CODEC_ERROR_UNKNOWN_TYPE,     // no such type byte or envelope
  CODEC_ERROR_UNEXPECTED_TYPE,  // a well-formed value where one of another type belongs
  CODEC_ERROR_TRAILING_BYTES,   // more bytes after the end of the value
  CODEC_ERROR_ZERO_IN_NAME,
  CODEC_ERROR_TOO_DEEP,
  CODEC_ERROR_TOO_LARGE,  // a size that doesn't fit into four bytes
};

GQuark codec_error_quark();

enum class WireType : uint8_t {
  null_value = 0,
  true_value = 1,
  false_value = 2,
  int32 = 3,
  int64 = 4,
  float64 = 6,
  string = 7,
  uint8_list = 8,
  int32_list = 9,
  int64_list = 10,
  float64_list = 11,
  list = 12,
  map = 13,
  float32_list = 14,
};

// A size below 254 is one byte. Mark 254 is followed by a size of two bytes, mark 255 by one of
// four.
inline constexpr uint8_t k_two_byte_size_mark = 254;
inline constexpr uint8_t k_four_byte_size_mark = 255;

// Values are read, written and released recursively. A message of nested lists must not overflow
// the stack.
inline constexpr int k_max_nesting = 128;

// A borrowed message, and how much of it has been read. Sizes in it may be wrong; each is checked
// against what is left.
struct MessageReader {
  const uint8_t* bytes;
  size_t size;
  size_t position = 0;

  size_t left() const { return size - position; }
};

// After a failure the position is where reading stopped.
ValueRef read_value(MessageReader& reader, GError** error);

// As read_value, but any other type than a string is an error too.
ValueRef read_string(MessageReader& reader, GError** error);

// Whether the whole message has been read.
bool expect_end(const MessageReader& reader, GError** error);

// The next byte, which must exist.
bool read_byte(MessageReader& reader, uint8_t* byte, GError** error);

// Both append to `message`, which must hold the whole message so far, because padding depends on
// the position. After a failure its content is undefined.
bool write_value(std::vector<uint8_t>& message, const FlValue* value, GError** error);
bool write_string(std::vector<uint8_t>& message, const std::string& text, GError** error);

#endif
