// The representation of a value, which the codec reads and writes directly.

#ifndef CORVANA_FLUTTER_EMBEDDING_VALUES_VALUE_H_
#define CORVANA_FLUTTER_EMBEDDING_VALUES_VALUE_H_

#include <flutter_linux/flutter_linux.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

struct ValueUnref {
  void operator()(FlValue* value) const { fl_value_unref(value); }
};

// An owned reference.
using ValueRef = std::unique_ptr<FlValue, ValueUnref>;

using ValueList = std::vector<ValueRef>;
// Pairs rather than a tree: the order of insertion matters, and the maps on a channel are small.
using ValueMap = std::vector<std::pair<ValueRef, ValueRef>>;

// The alternatives are in the order of FlValueType, so that index() is the type.
using ValueContent = std::variant<std::monostate, bool, int64_t, double, std::string,
                                  std::vector<uint8_t>, std::vector<int32_t>, std::vector<int64_t>,
                                  std::vector<double>, ValueList, ValueMap, std::vector<float>>;

struct _FlValue {
  ValueContent content;
  std::atomic<int> references{1};
};

// A new value with one reference. Any thread.
ValueRef value_new(ValueContent content);

#endif
