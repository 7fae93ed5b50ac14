#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_VALUE_READER_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_VALUE_READER_H_

#include <cstddef>
#include <cstdint>

#include "flutter_embedding/values/value.h"

// A message, borrowed, and how much of it has been read. The bytes come from outside: nothing in
// them is believed before it is checked against what is left.
struct MessageReader {
  const uint8_t* bytes;
  size_t size;
  size_t position = 0;

  size_t left() const { return size - position; }
};

// Any thread. Null or false and a CodecError: the bytes are malformed, and the position is where
// the reader gave up.
ValueRef read_value(MessageReader& reader, GError** error);

// As read_value, but any other type than a string is an error too.
ValueRef read_string(MessageReader& reader, GError** error);

// Whether the whole message has been read.
bool expect_end(const MessageReader& reader, GError** error);

// The next byte, which must exist.
bool read_byte(MessageReader& reader, uint8_t* byte, GError** error);

#endif
