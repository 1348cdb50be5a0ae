#include "support/process_counts.h"

#include <windows.h>

namespace {

std::chrono::nanoseconds nanoseconds_of (const FILETIME &time) {
  const auto ticks = (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
  return std::chrono::nanoseconds (static_cast<int64_t> (ticks) * 100);
}

} // namespace

size_t support::open_descriptors () {
  return 0;
}

size_t support::running_threads () {
  return 0;
}

std::chrono::nanoseconds support::thread_processor_time () {
  FILETIME created, ended, kernel, user;
  GetThreadTimes (GetCurrentThread (), &created, &ended, &kernel, &user);
  return nanoseconds_of (kernel) + nanoseconds_of (user);
}
