#pragma once

#include <atomic>
#include <cstdint>

/// Counts up by one and skips 0. @return the new value. Any thread.
uint32_t next_nonzero (std::atomic<uint32_t> &counter) noexcept;

/// The next of the numbers that connections, list handles and metadata handles share, so that no two of them
/// coincide until the counter wraps around. Never 0. Any thread.
// C8: doc/compatibility.md
uint32_t next_unique_number () noexcept;
