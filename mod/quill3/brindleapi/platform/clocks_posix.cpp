#include "platform/clocks.h"

#include <time.h>

int64_t platform::seconds_since_1970 () noexcept {
  return static_cast<int64_t> (time (nullptr));
}

int64_t platform::steady_milliseconds () noexcept {
  timespec now;
  clock_gettime (CLOCK_MONOTONIC, &now);
  return static_cast<int64_t> (now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}
