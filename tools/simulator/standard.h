#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sim {

/// One video standard the server can run at.
struct Standard {
  std::string_view name;       ///< word of `VideoStandard`
  std::string_view rate;       ///< word of `VideoRate`
  std::string_view resolution; ///< word of `VideoResolution`
  std::int64_t fields;         ///< the number of fields that pass ...
  std::int64_t seconds;        ///< ... in this number of seconds
  bool drop_frame;
};

/// How long a number of fields takes, rounded down. The products stay small, so that it is right for
/// centuries.
constexpr std::int64_t nanoseconds_of_fields (const Standard &standard, std::int64_t fields) {
  const std::int64_t period = standard.seconds * 1'000'000'000;
  return fields / standard.fields * period + fields % standard.fields * period / standard.fields;
}

/// The number of whole fields that pass in a time. Also right for centuries.
constexpr std::int64_t fields_in_microseconds (const Standard &standard, std::int64_t microseconds) {
  const std::int64_t period = standard.seconds * 1'000'000;
  return microseconds / period * standard.fields + microseconds % period * standard.fields / period;
}

/// The standard of that name, if there is one.
std::optional<Standard> find_standard (std::string_view name);

/// The names of all standards.
std::vector<std::string_view> standard_names ();

} // namespace sim
