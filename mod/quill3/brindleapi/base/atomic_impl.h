#pragma once

#include "base/kelvane_assert.h"

#include <atomic>
#include <cstdint>

/// One attempt to replace *p by @p desired if it equals @p expected, with the processor's own locked
/// instruction.
/// @param p aligned to 4. @return true if swapped. Any thread.
inline bool atomic_compare_and_set_32 (uint32_t *p, uint32_t expected, uint32_t desired) noexcept {
  if (!KELVANE_ASSERT_VALUE (uintptr_t (p) % sizeof (uint32_t) == 0))
    return false;
  return std::atomic_ref<uint32_t> (*p).compare_exchange_strong (expected, desired);
}

/// Replaces *p by @p desired if it equals @p expected. All calls in the process are serialised by one
/// recursive mutex. So the caller must not write the same word in another way.
/// @param p aligned to 8. @return true if swapped. Any thread; allocates nothing after its first call.
bool atomic_compare_and_set_64 (uint64_t *p, uint64_t expected, uint64_t desired);

/// Reads a word that others may change through `atomic_compare_and_set_64` at the same time.
inline uint64_t atomic_load_64 (const uint64_t *p) noexcept {
  return std::atomic_ref<uint64_t> (*const_cast<uint64_t *> (p)).load (std::memory_order_acquire);
}
