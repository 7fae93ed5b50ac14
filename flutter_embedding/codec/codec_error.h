#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_CODEC_ERROR_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_CODEC_ERROR_H_

#include <glib.h>

// Why bytes are no message, or a value can't become one.
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

#endif
