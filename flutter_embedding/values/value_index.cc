#include "flutter_embedding/values/value_index.h"

#include <cmath>
#include <functional>
#include <type_traits>

namespace {

size_t hash_content(std::monostate) { return 0; }

template <typename Scalar>
size_t hash_content(const Scalar& scalar) {
  if constexpr (std::is_floating_point_v<Scalar>) {
    // A NaN equals nothing, itself included: sharing one hash, many of them would only get in each
    // other's way.
    if (std::isnan(scalar)) return std::hash<const Scalar*>()(&scalar);
  }
  return std::hash<Scalar>()(scalar);
}

size_t hash_content(const ValueRef& value) { return ValueHash()(value.get()); }

size_t combine(size_t seed, size_t hash) {
  return seed ^ (hash + 0x9e3779b9 + (seed << 6) + (seed >> 2));
}

template <typename Element>
size_t hash_content(const std::vector<Element>& elements) {
  size_t seed = elements.size();
  for (const Element& element : elements) seed = combine(seed, hash_content(element));
  return seed;
}

// A sum, because the order of the entries makes no difference to equality.
size_t hash_content(const ValueMap& entries) {
  size_t sum = entries.size();
  for (const auto& [key, value] : entries) sum += combine(hash_content(key), hash_content(value));
  return sum;
}

}  // namespace

size_t ValueHash::operator()(const FlValue* value) const {
  return combine(
      value->content.index(),
      std::visit([](const auto& content) { return hash_content(content); }, value->content));
}
