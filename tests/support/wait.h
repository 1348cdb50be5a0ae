#pragma once

#include <chrono>
#include <thread>

namespace support {

/// How long a test waits for something that will surely come: long enough for a busy machine with sanitizers.
inline constexpr std::chrono::milliseconds generous{60000};

/// Calls the predicate every millisecond until it is true. False when the limit has passed.
template <typename Predicate>
bool wait_until (Predicate predicate, std::chrono::milliseconds limit = generous) {
  const auto end = std::chrono::steady_clock::now () + limit;
  while (!predicate ()) {
    if (std::chrono::steady_clock::now () > end)
      return predicate ();
    std::this_thread::sleep_for (std::chrono::milliseconds (1));
  }
  return true;
}

} // namespace support
