#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace sim {

/// One video standard the server can run at.
struct Standard {
  std::string_view name;       ///< word of `VideoStandard`
  std::string_view rate;       ///< word of `VideoRate`
  std::string_view resolution; ///< word of `VideoResolution`
  std::int64_t fields;         ///< so many fields pass ...
  std::int64_t seconds;        ///< ... in so many seconds
  bool drop_frame;
};

/// The standard of that name, if there is one.
std::optional<Standard> find_standard (std::string_view name);

} // namespace sim
