#pragma once

#include <cstdlib>

namespace support {

/// How often a test that hunts for rare events does it: few rounds in every run, many when ORVA_SOAK is set,
/// as scripts/soak does.
inline int rounds (int in_every_run, int when_soaking) {
  return std::getenv ("ORVA_SOAK") == nullptr ? in_every_run : when_soaking;
}

} // namespace support
