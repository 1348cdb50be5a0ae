#pragma once

#include "base/atomic_impl.h"

#include <concepts>
#include <type_traits>

/// One 32-bit word that any number of threads may read and change. Each operation that changes it is a single
/// atomic step, sequentially consistent; a load sees everything that happened before the store that it reads.
class atomic_unsigned {
public:
  /// Stores 0.
  constexpr atomic_unsigned () noexcept : word_ (0) {
    static_assert (sizeof (unsigned) == sizeof (uint32_t));
  }
  /// Stores @p value.
  constexpr explicit atomic_unsigned (unsigned value) noexcept : word_ (value) {}
  /// false stores 0. true leaves the word as it is, for objects in zeroed static storage which others may
  /// have counted up before a late constructor reaches them. An object with static storage and a constant
  /// flag is constant initialised, so no constructor runs late at all; where one does, it must stay out of
  /// the optimiser's sight, because a compiler that sees a constructor may drop what the storage held before
  /// it.
  template <std::same_as<bool> Flag>
#ifdef __clang__
  [[gnu::noinline]]
#else
  [[gnu::noipa]]
#endif
  constexpr explicit atomic_unsigned (Flag keep) noexcept {
    if (std::is_constant_evaluated () || !keep)
      word_ = 0;
  }
  atomic_unsigned (const atomic_unsigned &) = delete;
  atomic_unsigned &operator= (const atomic_unsigned &) = delete;

  unsigned load () const noexcept {
    return word ().load (std::memory_order_acquire);
  }
  void store (unsigned value) noexcept {
    word ().store (value);
  }

  unsigned operator++ () noexcept {
    return *this += 1;
  }
  unsigned operator++ (int) noexcept {
    return word ().fetch_add (1);
  }
  unsigned operator-- () noexcept {
    return *this -= 1;
  }
  unsigned operator-- (int) noexcept {
    return word ().fetch_sub (1);
  }
  /// @return the new value
  unsigned operator+= (unsigned amount) noexcept {
    return word ().fetch_add (amount) + amount;
  }
  /// @return the new value
  unsigned operator-= (unsigned amount) noexcept {
    return word ().fetch_sub (amount) - amount;
  }

  /// One attempt. @return true if the value was @p expected and is @p desired now.
  bool compare_and_set (unsigned expected, unsigned desired) noexcept {
    return atomic_compare_and_set_32 (&word_, expected, desired);
  }
  /// Subtracts @p amount unless the result would be below @p floor. @return true if done; else nothing
  /// changed.
  bool subtract_with_floor (unsigned amount, unsigned floor) noexcept {
    return change_if ([=] (unsigned value) { return value >= amount && value - amount >= floor; },
                      [=] (unsigned value) { return value - amount; });
  }
  /// Adds @p amount unless the result would be above @p ceiling. @return true if done; else nothing changed.
  bool add_with_ceiling (unsigned amount, unsigned ceiling) noexcept {
    return change_if ([=] (unsigned value) { return value <= ceiling && ceiling - value >= amount; },
                      [=] (unsigned value) { return value + amount; });
  }
  /// @return true if the value was below @p x and is @p x now
  bool raise_to (unsigned x) noexcept {
    return change_if ([=] (unsigned value) { return value < x; }, [=] (unsigned) { return x; });
  }
  /// @return true if the value was above @p x and is @p x now
  bool lower_to (unsigned x) noexcept {
    return change_if ([=] (unsigned value) { return value > x; }, [=] (unsigned) { return x; });
  }

  /// The following eight change the value and return true.
  bool multiply_by (unsigned x) noexcept {
    return change ([=] (unsigned value) { return value * x; });
  }
  /// @param x not 0; this is not tested
  bool divide_by (unsigned x) noexcept {
    return change ([=] (unsigned value) { return value / x; });
  }
  bool or_with (unsigned x) noexcept {
    return change ([=] (unsigned value) { return value | x; });
  }
  bool and_with (unsigned x) noexcept {
    return change ([=] (unsigned value) { return value & x; });
  }
  bool xor_with (unsigned x) noexcept {
    return change ([=] (unsigned value) { return value ^ x; });
  }
  /// Clears the bits of @p x.
  bool and_not_with (unsigned x) noexcept {
    return and_with (~x);
  }
  /// @param n bit number, taken modulo 32
  bool set_bit (unsigned n) noexcept {
    return or_with (bit (n));
  }
  /// @param n bit number, taken modulo 32
  bool clear_bit (unsigned n) noexcept {
    return and_not_with (bit (n));
  }
  /// @param n bit number, taken modulo 32
  bool test_bit (unsigned n) const noexcept {
    return (load () & bit (n)) != 0;
  }

private:
  std::atomic_ref<uint32_t> word () const noexcept {
    return std::atomic_ref<uint32_t> (word_);
  }
  static constexpr uint32_t bit (unsigned n) noexcept {
    return uint32_t{1} << (n % 32);
  }

  template <class Condition, class Change>
  bool change_if (Condition condition, Change result) noexcept {
    unsigned value = load ();
    while (condition (value))
      if (word ().compare_exchange_weak (value, result (value)))
        return true;
    return false;
  }
  template <class Change>
  bool change (Change result) noexcept {
    return change_if ([] (unsigned) { return true; }, result);
  }

  alignas (4) mutable uint32_t word_;
};
