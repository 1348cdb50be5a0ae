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

  /// Returns the number of fields since the last call: at most 600, or at a higher rate that times the rate.
  /// The others are left out, so that a machine that has slept does not catch up for long.
  int take ();

  /// The time at which the next field ends; nothing while the clock is paused.
  std::optional<Real::time_point> next () const;

  bool paused () const { return paused_; }
  void pause (bool paused);

  /// How many times faster than the real time it runs.
  double rate () const { return rate_; }
  /// @param rate from 0.001 to 1000
  void set_rate (double rate);

  /// Counts fields that the caller lets pass at once. `take` does not return them.
  void step (int fields) { stepped_ += fields; }

  /// Milliseconds since 1970. With a given start, they depend only on the number of fields that have passed.
  std::int64_t milliseconds () const;

private:
  std::int64_t due () const;
  void begin_anew ();

  const Standard standard_;
  const std::optional<std::int64_t> start_;
  Real::time_point since_ = Real::now (); ///< when the rate or the pause last changed
  std::int64_t taken_ = 0;                ///< fields since then
  std::int64_t before_ = 0;               ///< fields before then
  std::int64_t stepped_ = 0;
  double rate_ = 1;
  bool paused_ = false;
};

/// Reads a time such as `2026-01-31T12:00:00Z`. Returns milliseconds since 1970, or nothing when the text is
/// not a time.
std::optional<std::int64_t> read_time (const std::string &text);

} // namespace sim
