#include <algorithm>
#include <optional>
#include <type_traits>

#include "flutter_embedding/values/value.h"

namespace {

template <typename Content>
struct IsVector : std::false_type {};
template <typename Element>
struct IsVector<std::vector<Element>> : std::true_type {};

std::optional<size_t> element_count(const FlValue& value) {
  return std::visit(
      [](const auto& content) -> std::optional<size_t> {
        if constexpr (IsVector<std::decay_t<decltype(content)>>()) {
          return content.size();
        } else {
          return std::nullopt;
        }
      },
      value.content);
}

ValueList* elements_of(FlValue* value) {
  return value == nullptr ? nullptr : std::get_if<ValueList>(&value->content);
}

ValueMap* entries_of(FlValue* value) {
  return value == nullptr ? nullptr : std::get_if<ValueMap>(&value->content);
}

template <typename KeyTest>
FlValue* find_value(const ValueMap& entries, KeyTest is_key) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const auto& entry) { return is_key(entry.first.get()); });
  return found == entries.end() ? nullptr : found->second.get();
}

template <typename Content>
bool same_content(const Content& a, const Content& b) {
  return a == b;
}

bool same_content(const ValueList& a, const ValueList& b) {
  return std::equal(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const auto& left, const auto& right) { return fl_value_equal(left.get(), right.get()); });
}

bool same_content(const ValueMap& a, const ValueMap& b) {
  if (a.size() != b.size()) return false;
  return std::all_of(a.begin(), a.end(), [&](const auto& entry) {
    FlValue* key = entry.first.get();
    FlValue* value = find_value(b, [key](FlValue* other) { return fl_value_equal(other, key); });
    return value != nullptr && fl_value_equal(value, entry.second.get());
  });
}

}  // namespace

bool fl_value_equal(FlValue* a, FlValue* b) {
  g_return_val_if_fail(a != nullptr && b != nullptr, false);
  if (a->content.index() != b->content.index()) return false;
  return std::visit(
      [b](const auto& content) {
        return same_content(content, std::get<std::decay_t<decltype(content)>>(b->content));
      },
      a->content);
}

void fl_value_append(FlValue* list, FlValue* value) {
  fl_value_append_take(list, fl_value_ref(value));
}

void fl_value_append_take(FlValue* list, FlValue* value) {
  ValueRef owned_value(value);
  ValueList* elements = elements_of(list);
  g_return_if_fail(elements != nullptr);
  g_return_if_fail(value != nullptr);
  elements->push_back(std::move(owned_value));
}

void fl_value_set(FlValue* map, FlValue* key, FlValue* value) {
  fl_value_set_take(map, fl_value_ref(key), fl_value_ref(value));
}

void fl_value_set_take(FlValue* map, FlValue* key, FlValue* value) {
  ValueRef owned_key(key);
  ValueRef owned_value(value);
  ValueMap* entries = entries_of(map);
  g_return_if_fail(entries != nullptr);
  g_return_if_fail(key != nullptr && value != nullptr);
  const auto found = std::find_if(entries->begin(), entries->end(), [key](const auto& entry) {
    return fl_value_equal(entry.first.get(), key);
  });
  if (found == entries->end()) {
    entries->emplace_back(std::move(owned_key), std::move(owned_value));
  } else {
    found->second = std::move(owned_value);
  }
}

void fl_value_set_string(FlValue* map, const gchar* key, FlValue* value) {
  fl_value_set_take(map, fl_value_new_string(key), fl_value_ref(value));
}

void fl_value_set_string_take(FlValue* map, const gchar* key, FlValue* value) {
  fl_value_set_take(map, fl_value_new_string(key), value);
}

size_t fl_value_get_length(FlValue* value) {
  g_return_val_if_fail(value != nullptr, 0);
  const std::optional<size_t> count = element_count(*value);
  g_return_val_if_fail(count.has_value(), 0);
  return *count;
}

FlValue* fl_value_get_list_value(FlValue* list, size_t index) {
  const ValueList* elements = elements_of(list);
  g_return_val_if_fail(elements != nullptr, nullptr);
  g_return_val_if_fail(index < elements->size(), nullptr);
  return (*elements)[index].get();
}

FlValue* fl_value_get_map_key(FlValue* map, size_t index) {
  const ValueMap* entries = entries_of(map);
  g_return_val_if_fail(entries != nullptr, nullptr);
  g_return_val_if_fail(index < entries->size(), nullptr);
  return (*entries)[index].first.get();
}

FlValue* fl_value_get_map_value(FlValue* map, size_t index) {
  const ValueMap* entries = entries_of(map);
  g_return_val_if_fail(entries != nullptr, nullptr);
  g_return_val_if_fail(index < entries->size(), nullptr);
  return (*entries)[index].second.get();
}

FlValue* fl_value_lookup(FlValue* map, FlValue* key) {
  const ValueMap* entries = entries_of(map);
  g_return_val_if_fail(entries != nullptr, nullptr);
  g_return_val_if_fail(key != nullptr, nullptr);
  return find_value(*entries, [key](FlValue* other) { return fl_value_equal(other, key); });
}

FlValue* fl_value_lookup_string(FlValue* map, const gchar* key) {
  const ValueMap* entries = entries_of(map);
  g_return_val_if_fail(entries != nullptr, nullptr);
  g_return_val_if_fail(key != nullptr, nullptr);
  return find_value(*entries, [key](const FlValue* other) {
    const std::string* text = std::get_if<std::string>(&other->content);
    return text != nullptr && *text == key;
  });
}
