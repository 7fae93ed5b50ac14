#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_VALUE_WRITER_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_VALUE_WRITER_H_

#include <flutter_linux/flutter_linux.h>

#include <cstdint>
#include <string>
#include <vector>

// Both append to `message`, which holds the message from its first byte on, since padding counts
// from there. False and a CodecError: the value can't be encoded, and `message` is of no use.
// Any thread.
bool write_value(std::vector<uint8_t>& message, const FlValue* value, GError** error);
bool write_string(std::vector<uint8_t>& message, const std::string& text, GError** error);

#endif
