/// The number type of speeds.
#pragma once

#include <compare>
#include <cstdint>

namespace Kelvane {

/// A signed number of 16 whole and 16 fraction bits: `raw` is the number times 65536, so one is
/// `fixed{65536}`. Its text form is AString::from_fixed and AString::to_fixed.
struct fixed {
  int32_t raw = 0;

  constexpr bool operator== (const fixed &) const = default;
  constexpr std::strong_ordering operator<=> (const fixed &) const = default;
};

static_assert (sizeof (fixed) == sizeof (int32_t));
static_assert (sizeof (fixed) == sizeof (uint32_t));

} // namespace Kelvane
