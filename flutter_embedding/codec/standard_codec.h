// The standard codec: values, method calls and replies as bytes, and back. Pure functions, for any
// thread. On failure they return null or false and set a CodecError. Any bytes may be passed in.

#ifndef CORVANA_FLUTTER_EMBEDDING_CODEC_STANDARD_CODEC_H_
#define CORVANA_FLUTTER_EMBEDDING_CODEC_STANDARD_CODEC_H_

#include <string>

#include "flutter_embedding/values/value.h"

// A message that is one value. Encoding returns a new reference.
GBytes* encode_value(const FlValue* value, GError** error);
ValueRef decode_value(GBytes* message, GError** error);

// The name, then the arguments; null arguments are sent as the null value.
struct DecodedCall {
  std::string name;
  ValueRef args;  // never null after success
};
GBytes* encode_method_call(const std::string& name, const FlValue* args, GError** error);
bool decode_method_call(GBytes* message, DecodedCall* call, GError** error);

// A success, an error or, as an empty message, "not implemented". Both return a new reference.
GBytes* encode_reply(FlMethodResponse* response, GError** error);
FlMethodResponse* decode_reply(GBytes* message, GError** error);

#endif
