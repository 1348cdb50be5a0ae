#pragma once

#include "base/atomic_impl.h"

#include <concepts>

/// One 64-bit word that any number of threads may read and change. Each change is one atomic step. One mutex
/// serialises all changes of all such words in the process, so use them for rare events only. A load is one
/// instruction, and sees everything that happened before the store that it reads.
class atomic_uint64 {
public:
  /// Stores 0.
  constexpr atomic_uint64 () noexcept : atomic_uint64 (0) {}
  constexpr explicit atomic_uint64 (uint64_t value) noexcept : word_ (value) {}
  atomic_uint64 (const atomic_uint64 &) = delete;
  atomic_uint64 &operator= (const atomic_uint64 &) = delete;

  uint64_t load () const noexcept { return atomic_load_64 (&word_); }
  void store (uint64_t value);

  uint64_t operator++ () { return *this += 1; }
  uint64_t operator++ (int) { return (*this += 1) - 1; }
  uint64_t operator-- () { return *this -= 1; }
  uint64_t operator-- (int) { return (*this -= 1) + 1; }
  /// Signed amounts of 32 bits are sign-extended. @return the new value
  template <std::integral Amount>
  uint64_t operator+= (Amount amount) {
    return add (static_cast<uint64_t> (amount));
  }
  /// Signed amounts of 32 bits are sign-extended. @return the new value
  template <std::integral Amount>
  uint64_t operator-= (Amount amount) {
    return add (uint64_t{0} - static_cast<uint64_t> (amount));
  }

  /// One attempt. @return true if the value was @p expected and is @p desired now.
  bool compare_and_set (uint64_t expected, uint64_t desired) {
    return atomic_compare_and_set_64 (&word_, expected, desired);
  }

private:
  uint64_t add (uint64_t amount);

  alignas (8) uint64_t word_;
};
