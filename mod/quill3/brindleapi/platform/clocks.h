#pragma once

#include <cstdint>

namespace platform {

/// Seconds since 1 January 1970, UTC, by the system's clock. Any thread.
int64_t seconds_since_1970 () noexcept;

/// Milliseconds of a clock that never goes back. Its zero has no meaning. Any thread.
int64_t steady_milliseconds () noexcept;

} // namespace platform
