#pragma once

#include <optional>
#include <utility>

namespace brisklet {

/// The value made last, and what it was made from.
template <typename Key, typename Value>
class Kept {
 public:
  /// The value for this key; `make` is called for another key than the last one.
  template <typename Make>
  const Value& get(const Key& key, const Make& make) {
    if (key_ != key) {
      value_ = make();
      key_ = key;
    }
    return value_;
  }

  /// Takes a value that was made elsewhere.
  void put(Key key, Value value) {
    key_ = std::move(key);
    value_ = std::move(value);
  }

  [[nodiscard]] const std::optional<Key>& key() const { return key_; }

  /// The value last got.
  [[nodiscard]] const Value& last() const { return value_; }

 private:
  std::optional<Key> key_;
  Value value_{};
};

}  // namespace brisklet
