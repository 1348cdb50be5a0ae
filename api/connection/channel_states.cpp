#include "api/connection/channel_states.h"

#include "platform/clocks.h"

namespace {

constexpr int64_t first_value_seconds = 5;
constexpr uint32_t clock_look_milliseconds = 10;

} // namespace

void ChannelStates::set_valid (std::atomic<bool> &valid) {
  if (valid.exchange (true))
    return;
  {
    const AMutexScope hold (first_value_lock_); // a thread that saw no value is waiting now
  }
  first_value_.notify_all ();
}

// The limit is counted by the system's clock, which may be set meanwhile. So the clock is read again and
// again.
bool ChannelStates::wait_for_first_value (const std::atomic<bool> &valid) {
  const int64_t start = platform::seconds_since_1970 ();
  const auto is_valid = [&valid] { return valid.load (); };
  const AMutexScope hold (first_value_lock_);
  while (platform::seconds_since_1970 () - start <= first_value_seconds)
    if (first_value_.wait_for (first_value_lock_, clock_look_milliseconds, is_valid))
      return true;
  return valid;
}
