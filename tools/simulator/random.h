#pragma once

#include <cstdint>
#include <random>

namespace sim {

/// A source of random numbers. The same seed gives the same numbers on every machine.
class Random {
public:
  Random () : Random ((std::uint64_t{std::random_device{}()} << 32) | std::random_device{}()) {}
  explicit Random (std::uint64_t seed) : generator_ (seed) {}

  std::uint64_t number () { return generator_ (); }

  /// A number from `low` to `high`, both included; `low` when they are the wrong way round.
  std::uint64_t between (std::uint64_t low, std::uint64_t high) {
    return high <= low ? low : low + generator_ () % (high - low + 1);
  }

  /// True with this probability: 0 never, 1 always.
  bool happens (double probability) {
    return static_cast<double> (generator_ () >> 11) < probability * 9007199254740992.0;
  }

private:
  std::mt19937_64 generator_;
};

} // namespace sim
