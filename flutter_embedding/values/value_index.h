#ifndef CORVANA_FLUTTER_EMBEDDING_VALUES_VALUE_INDEX_H_
#define CORVANA_FLUTTER_EMBEDDING_VALUES_VALUE_INDEX_H_

#include <cstddef>
#include <unordered_map>

#include "flutter_embedding/values/value.h"

// Any thread. Values that fl_value_equal calls equal have the same hash, however they were encoded.
struct ValueHash {
  size_t operator()(const FlValue* value) const;
};

struct ValueEqual {
  bool operator()(FlValue* a, FlValue* b) const { return fl_value_equal(a, b); }
};

// Where each key stands in a map that has many. Borrows the keys, which must not change meanwhile.
using ValueIndex = std::unordered_map<FlValue*, size_t, ValueHash, ValueEqual>;

#endif
