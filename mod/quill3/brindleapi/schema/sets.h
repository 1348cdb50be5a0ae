#pragma once

#include "base/kelvane_assert.h"
#include "schema/enumerations.h"

#include <cstdint>

namespace QUILL3 {

/// A set of values of one enumeration with room for @p Capacity, in order of insertion. A plain value of `4 +
/// 4 * Capacity` bytes. A set that was received may hold a value twice, and a caller that writes the members
/// directly can make a set invalid. Every operation handles both.
template <Enumeration Of, uint32_t Capacity>
struct EnumSet {
  static constexpr uint32_t capacity = Capacity;

  uint32_t count{};
  uint32_t vec[Capacity]{};

  /// Empty.
  EnumSet () = default;
  /// One member.
  explicit EnumSet (uint32_t value) { add (value); }
  /// The @p tblcount values at @p tbl, added in order. More than the capacity is an assertion failure and
  /// leaves the set empty.
  EnumSet (const uint32_t *tbl, uint32_t tblcount) {
    if (!KELVANE_ASSERT_VALUE (tblcount <= Capacity))
      return;
    for (uint32_t i = 0; i < tblcount; ++i)
      add (tbl[i]);
  }

  /// Adds @p value at the end unless the set has it already. A full set fails an assertion and is unchanged.
  void add (uint32_t value) {
    if (contains (value))
      return;
    if (count < Capacity)
      vec[count++] = value;
    else
      KELVANE_ASSERT_VALUE (count < Capacity);
  }
  /// Removes every occurrence of @p value. The others keep their order.
  void remove (uint32_t value) {
    uint32_t *const last = vec + used ();
    uint32_t *to = vec;
    for (const uint32_t *from = vec; from != last; ++from)
      if (*from != value)
        *to++ = *from;
    count = static_cast<uint32_t> (to - vec);
  }
  bool contains (uint32_t value) const {
    for (const uint32_t member : *this)
      if (member == value)
        return true;
    return false;
  }

  /// Whether the count is within the capacity and every member has a spelling.
  bool is_valid () const {
    if (count > Capacity)
      return false;
    for (const uint32_t member : *this)
      if (!QUILL3::is_valid (Of, member))
        return false;
    return true;
  }
  /// Two invalid sets are equal, a valid and an invalid one are not. Valid sets are compared position by
  /// position, so their order counts.
  // C94: doc/compatibility.md
  bool operator== (const EnumSet &other) const {
    const bool valid = is_valid ();
    if (!valid || !other.is_valid ())
      return valid == other.is_valid ();
    if (count != other.count)
      return false;
    for (uint32_t i = 0; i < count; ++i)
      if (vec[i] != other.vec[i])
        return false;
    return true;
  }

  const uint32_t *begin () const { return vec; }
  const uint32_t *end () const { return vec + used (); }

private:
  uint32_t used () const { return count < Capacity ? count : Capacity; }
};

/// A vector with room for @p Capacity elements. A plain value.
template <class T, uint32_t Capacity>
struct FixedVector {
  static constexpr uint32_t capacity = Capacity;

  uint32_t count{};
  T vec[Capacity]{};

  /// Adds @p value at the end. A full vector fails an assertion and is unchanged.
  void add (const T &value) {
    if (count < Capacity)
      vec[count++] = value;
    else
      KELVANE_ASSERT_VALUE (count < Capacity);
  }
  /// Compares the counts, then the elements up to them. Elements behind the count are ignored.
  bool operator== (const FixedVector &other) const {
    if (count != other.count)
      return false;
    for (const T *a = begin (), *b = other.begin (); a != end (); ++a, ++b)
      if (!(*a == *b))
        return false;
    return true;
  }

  const T *begin () const { return vec; }
  const T *end () const { return vec + (count < Capacity ? count : Capacity); }
};

} // namespace QUILL3
