#include <limits>

#include "flutter_embedding/codec/values_as_bytes.h"

namespace {

constexpr WireType wire_type_of(const std::vector<uint8_t>&) { return WireType::uint8_list; }
constexpr WireType wire_type_of(const std::vector<int32_t>&) { return WireType::int32_list; }
constexpr WireType wire_type_of(const std::vector<int64_t>&) { return WireType::int64_list; }
constexpr WireType wire_type_of(const std::vector<double>&) { return WireType::float64_list; }
constexpr WireType wire_type_of(const std::vector<float>&) { return WireType::float32_list; }

// Writes one value. Each nested value gets a writer of its own, one level deeper.
struct ValueWriter {
  std::vector<uint8_t>& message;
  GError** error;
  int depth;

  bool write(const FlValue* value) {
    if (depth > k_max_nesting) {
      g_set_error(error, codec_error_quark(), CODEC_ERROR_TOO_DEEP,
                  "The value is nested deeper than %d levels", k_max_nesting);
      return false;
    }
    return std::visit(*this, value->content);
  }

  bool write_inner(const ValueRef& value) {
    return ValueWriter{message, error, depth + 1}.write(value.get());
  }

  void put_type(WireType type) { message.push_back(static_cast<uint8_t>(type)); }

  template <typename Number>
  void put_numbers(const Number* numbers, size_t count) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(numbers);
    message.insert(message.end(), bytes, bytes + count * sizeof(Number));
  }

  void pad_to(size_t width) {
    while (message.size() % width != 0) message.push_back(0);
  }

  bool put_size(size_t size) {
    if (size > std::numeric_limits<uint32_t>::max()) {
      g_set_error(error, codec_error_quark(), CODEC_ERROR_TOO_LARGE,
                  "A size of %" G_GSIZE_FORMAT " doesn't fit into a message", size);
      return false;
    }
    if (size < k_two_byte_size_mark) {
      message.push_back(static_cast<uint8_t>(size));
    } else if (size <= std::numeric_limits<uint16_t>::max()) {
      const auto narrow = static_cast<uint16_t>(size);
      message.push_back(k_two_byte_size_mark);
      put_numbers(&narrow, 1);
    } else {
      const auto narrow = static_cast<uint32_t>(size);
      message.push_back(k_four_byte_size_mark);
      put_numbers(&narrow, 1);
    }
    return true;
  }

  bool operator()(std::monostate) {
    put_type(WireType::null_value);
    return true;
  }

  bool operator()(bool flag) {
    put_type(flag ? WireType::true_value : WireType::false_value);
    return true;
  }

  bool operator()(int64_t number) {
    const auto narrow = static_cast<int32_t>(number);
    if (narrow == number) {
      put_type(WireType::int32);
      put_numbers(&narrow, 1);
    } else {
      put_type(WireType::int64);
      put_numbers(&number, 1);
    }
    return true;
  }

  bool operator()(double number) {
    put_type(WireType::float64);
    pad_to(sizeof number);
    put_numbers(&number, 1);
    return true;
  }

  bool operator()(const std::string& text) {
    put_type(WireType::string);
    if (!put_size(text.size())) return false;
    put_numbers(text.data(), text.size());
    return true;
  }

  template <typename Number>
  bool operator()(const std::vector<Number>& numbers) {
    put_type(wire_type_of(numbers));
    if (!put_size(numbers.size())) return false;
    pad_to(sizeof(Number));
    put_numbers(numbers.data(), numbers.size());
    return true;
  }

  bool operator()(const ValueList& elements) {
    put_type(WireType::list);
    if (!put_size(elements.size())) return false;
    for (const ValueRef& element : elements)
      if (!write_inner(element)) return false;
    return true;
  }

  bool operator()(const ValueMap& entries) {
    put_type(WireType::map);
    if (!put_size(entries.size())) return false;
    for (const auto& [key, value] : entries) {
      if (!write_inner(key) || !write_inner(value)) return false;
    }
    return true;
  }
};

}  // namespace

bool write_value(std::vector<uint8_t>& message, const FlValue* value, GError** error) {
  return ValueWriter{message, error, 0}.write(value);
}

bool write_string(std::vector<uint8_t>& message, const std::string& text, GError** error) {
  return ValueWriter{message, error, 0}(text);
}
