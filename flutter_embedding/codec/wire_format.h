// What the writer and the reader of values have to agree on.

#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_WIRE_FORMAT_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_WIRE_FORMAT_H_

#include <cstdint>

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

// A size below 254 is one byte. Mark 254 is followed by a size of two bytes, mark 255 by one of four.
constexpr uint8_t k_two_byte_size_mark = 254;
constexpr uint8_t k_four_byte_size_mark = 255;

// Values are read, written and released recursively: a message of nothing but list openings must
// not use up the stack.
constexpr int k_max_nesting = 128;

#endif
