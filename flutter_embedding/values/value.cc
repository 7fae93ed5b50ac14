#include "flutter_embedding/values/value.h"

#include <type_traits>

namespace {

static_assert(
    std::is_same_v<std::variant_alternative_t<FL_VALUE_TYPE_MAP, ValueContent>, ValueMap>);
static_assert(std::variant_size_v<ValueContent> == FL_VALUE_TYPE_CUSTOM);

template <typename Content>
bool holds(const FlValue* value) {
  return value != nullptr && std::holds_alternative<Content>(value->content);
}

template <typename Number>
FlValue* number_list_new(const Number* values, size_t length) {
  g_return_val_if_fail(values != nullptr || length == 0, nullptr);
  return value_new(std::vector<Number>(values, values + length)).release();
}

template <typename Number>
const Number* number_list_data(const FlValue* value) {
  g_return_val_if_fail(holds<std::vector<Number>>(value), nullptr);
  return std::get<std::vector<Number>>(value->content).data();
}

}  // namespace

ValueRef value_new(ValueContent content) { return ValueRef(new _FlValue{std::move(content)}); }

FlValue* fl_value_new_null() { return value_new(std::monostate()).release(); }

FlValue* fl_value_new_bool(bool value) { return value_new(value).release(); }

FlValue* fl_value_new_int(int64_t value) { return value_new(value).release(); }

FlValue* fl_value_new_float(double value) { return value_new(value).release(); }

FlValue* fl_value_new_string(const gchar* value) {
  g_return_val_if_fail(value != nullptr, nullptr);
  return value_new(std::string(value)).release();
}

FlValue* fl_value_new_string_sized(const gchar* value, size_t value_length) {
  g_return_val_if_fail(value != nullptr || value_length == 0, nullptr);
  return value_new(std::string(value == nullptr ? "" : value, value_length)).release();
}

FlValue* fl_value_new_uint8_list(const uint8_t* values, size_t values_length) {
  return number_list_new(values, values_length);
}

FlValue* fl_value_new_int32_list(const int32_t* values, size_t values_length) {
  return number_list_new(values, values_length);
}

FlValue* fl_value_new_int64_list(const int64_t* values, size_t values_length) {
  return number_list_new(values, values_length);
}

FlValue* fl_value_new_float_list(const double* values, size_t values_length) {
  return number_list_new(values, values_length);
}

FlValue* fl_value_new_float32_list(const float* values, size_t values_length) {
  return number_list_new(values, values_length);
}

FlValue* fl_value_new_list() { return value_new(ValueList()).release(); }

FlValue* fl_value_new_map() { return value_new(ValueMap()).release(); }

FlValue* fl_value_ref(FlValue* value) {
  g_return_val_if_fail(value != nullptr, nullptr);
  // Relaxed: the caller already holds a reference, so there is nothing to synchronise.
  value->references.fetch_add(1, std::memory_order_relaxed);
  return value;
}

void fl_value_unref(FlValue* value) {
  g_return_if_fail(value != nullptr);
  // Acquire-release: every other thread's use of the value happens before the delete.
  if (value->references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete value;
}

FlValueType fl_value_get_type(FlValue* value) {
  g_return_val_if_fail(value != nullptr, FL_VALUE_TYPE_NULL);
  return static_cast<FlValueType>(value->content.index());
}

bool fl_value_get_bool(FlValue* value) {
  g_return_val_if_fail(holds<bool>(value), false);
  return std::get<bool>(value->content);
}

int64_t fl_value_get_int(FlValue* value) {
  g_return_val_if_fail(holds<int64_t>(value), 0);
  return std::get<int64_t>(value->content);
}

double fl_value_get_float(FlValue* value) {
  g_return_val_if_fail(holds<double>(value), 0);
  return std::get<double>(value->content);
}

const gchar* fl_value_get_string(FlValue* value) {
  g_return_val_if_fail(holds<std::string>(value), nullptr);
  return std::get<std::string>(value->content).c_str();
}

const uint8_t* fl_value_get_uint8_list(FlValue* value) { return number_list_data<uint8_t>(value); }

const int32_t* fl_value_get_int32_list(FlValue* value) { return number_list_data<int32_t>(value); }

const int64_t* fl_value_get_int64_list(FlValue* value) { return number_list_data<int64_t>(value); }

const double* fl_value_get_float_list(FlValue* value) { return number_list_data<double>(value); }

const float* fl_value_get_float32_list(FlValue* value) { return number_list_data<float>(value); }
