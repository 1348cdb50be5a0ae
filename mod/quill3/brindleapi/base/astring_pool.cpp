#include "base/astring_pool.h"

#include "platform/sanitizers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <new>

namespace {

constexpr uintptr_t count = 1024;
constexpr uintptr_t page_size = 4096;
constexpr uintptr_t spread = 0x9E37; // odd, so that the threads' parts of the array are far from each other

constinit std::array<std::atomic<void *>, count> kept{};

/// How many blocks this thread has put into the array and not taken out again; below 0 modulo 2^64.
constinit thread_local uintptr_t stacked = 0;

/// Each thread uses the array as a stack that has its bottom somewhere else.
std::atomic<void *> &place (uintptr_t height) noexcept {
  const uintptr_t bottom = reinterpret_cast<uintptr_t> (&stacked) / page_size * spread;
  return kept[(bottom + height) % count];
}

} // namespace

void *astring_pool::allocate (size_t size) {
  if constexpr (!platform::under_address_sanitizer)
    if (void *block = place (stacked - 1).exchange (nullptr, std::memory_order_acquire)) {
      --stacked;
      return block;
    }
  return ::operator new (size);
}

void astring_pool::release (void *block) noexcept {
  void *nothing = nullptr;
  if constexpr (!platform::under_address_sanitizer)
    if (place (stacked).compare_exchange_strong (nothing, block, std::memory_order_release,
                                                 std::memory_order_relaxed)) {
      ++stacked;
      return;
    }
  ::operator delete (block);
}

size_t astring_pool::kept_blocks () noexcept {
  return static_cast<size_t> (std::count_if (kept.begin (), kept.end (), [] (const std::atomic<void *> &at) {
    return at.load (std::memory_order_relaxed) != nullptr;
  }));
}
