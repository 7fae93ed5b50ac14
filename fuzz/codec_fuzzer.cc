// Every decoded value can be encoded, and that decodes to an equal value.
#include "flutter_embedding/codec/standard_codec.h"
#include "fuzz/fuzzer.h"

void try_input(FuzzedDataProvider& input) {
  const auto bytes = input.ConsumeRemainingBytes<uint8_t>();
  g_autoptr(GBytes) message = g_bytes_new(bytes.data(), bytes.size());
  const ValueRef value = decode_value(message, nullptr);
  if (value == nullptr) return;
  g_autoptr(GBytes) encoded = encode_value(value.get(), nullptr);
  const ValueRef again = decode_value(encoded, nullptr);
  // A value that holds a NaN doesn't equal itself, so the bytes are compared too.
  const bool equals_itself = fl_value_equal(value.get(), value.get());
  require(again != nullptr && fl_value_equal(value.get(), again.get()) == equals_itself);
  g_autoptr(GBytes) encoded_again = encode_value(again.get(), nullptr);
  require(g_bytes_equal(encoded, encoded_again));
}
