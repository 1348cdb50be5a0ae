#pragma once

#include <utility>

/// A value that may be absent. It is absent at first. Assigning a value makes it present. One thread at a
/// time.
template <class T>
struct AOption {
  bool present{}; ///< whether `value` counts
  T value{};      ///< meaningless while `present` is false

  AOption () = default;
  /// Present, with @p given.
  AOption (T given) : present (true), value (std::move (given)) {}

  /// Makes it absent. The value stays in memory but is not used.
  void clear () { present = false; }
  /// The value, or @p fallback when it is absent.
  T value_or (T fallback) const { return present ? value : fallback; }

  /// Two absent ones are equal whatever they hold.
  bool operator== (const AOption &other) const {
    return present == other.present && (!present || value == other.value);
  }
};
