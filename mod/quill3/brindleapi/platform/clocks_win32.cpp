#include "platform/clocks.h"

#include <time.h>
#include <windows.h>

int64_t platform::seconds_since_1970 () noexcept {
  return static_cast<int64_t> (_time64 (nullptr));
}

int64_t platform::steady_milliseconds () noexcept {
  LARGE_INTEGER rate;
  LARGE_INTEGER now;
  QueryPerformanceFrequency (&rate);
  QueryPerformanceCounter (&now);
  // In two parts, because the product of the whole count would overflow after some weeks on fast counters.
  return now.QuadPart / rate.QuadPart * 1000 + now.QuadPart % rate.QuadPart * 1000 / rate.QuadPart;
}
