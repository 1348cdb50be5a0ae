#pragma once

#include "standard.h"
#include "values.h"

#include <array>
#include <string>

namespace sim {

inline constexpr int channel_count = 8;

/// What one channel does.
struct Channel {
  bool playing = false;
  Fixed speed = fixed_one;
  std::int64_t place = 0; ///< position in fields, 16 bits behind the point

  std::uint32_t position () const { return static_cast<std::uint32_t> (place >> 16); }
};

/// The channels of the server.
class Channels {
public:
  explicit Channels (const Standard &standard) : standard_ (standard) {}

  Channel &at (int number) { return channels_.at (static_cast<std::size_t> (number)); }
  void pass_field ();

  /// The body of a report of that kind, as things are now; empty when the kind has none.
  std::string report_body (int channel, int kind) const;

private:
  const Standard standard_;
  std::array<Channel, channel_count> channels_;
};

} // namespace sim
