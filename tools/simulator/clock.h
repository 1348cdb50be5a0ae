#pragma once

#include "standard.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace sim {

/// The time of one server. Fields pass at the rate of its standard, faster, or not at all.
class Clock {
public:
  using Real = std::chrono::steady_clock;

  /// @param start milliseconds since 1970 at the first field; absent: the time of day of this machine
  Clock (const Standard &standard, std::optional<std::int64_t> start)
      : standard_ (standard), start_ (start) {}

  /// The number of fields since the last call; after a long sleep of the machine only some of them.
  int take ();

  /// When the next field is over; nothing while it is paused.
  std::optional<Real::time_point> next () const;

  bool paused () const { return paused_; }
  void pause (bool paused);

  /// How many times faster than the real time it runs.
  double rate () const { return rate_; }
  /// @param rate from 0.001 to 1000
  void set_rate (double rate);

  /// Lets a number of fields pass at once.
  void step (int fields) { stepped_ += fields; }

  /// Milliseconds since 1970: with a given start the same for the same number of fields.
  std::int64_t milliseconds () const;

private:
  std::int64_t due () const;
  void begin_anew ();

  const Standard standard_;
  const std::optional<std::int64_t> start_;
  Real::time_point since_ = Real::now (); ///< of the last change of pace
  std::int64_t taken_ = 0;                ///< fields since then
  std::int64_t before_ = 0;               ///< fields before then
  std::int64_t stepped_ = 0;
  double rate_ = 1;
  bool paused_ = false;
};

/// Milliseconds since 1970 of a time such as `2026-01-31T12:00:00Z`, or nothing when it is none.
std::optional<std::int64_t> read_time (const std::string &text);

} // namespace sim
