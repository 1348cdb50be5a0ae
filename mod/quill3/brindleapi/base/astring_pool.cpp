#include "base/astring_pool.h"

#include "platform/sanitizers.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <new>

namespace {

constexpr uintptr_t count = 1024;
constexpr uintptr_t page_size = 4096;
constexpr uintptr_t spread = 0x9E37; // odd

constinit std::array<std::atomic<void *>, count> kept{};

/// Where the next block of this thread goes. It moves up with each block that is freed and down with each one
/// that is wanted, so it meets the blocks of this thread again, and sooner or later those of all others.
constinit thread_local uintptr_t height = 0;

/// The threads begin at places that are far from each other. Not used with the address sanitizer.
[[maybe_unused]] std::atomic<void *> &place () noexcept {
  const uintptr_t bottom = reinterpret_cast<uintptr_t> (&height) / page_size * spread;
  return kept[(bottom + height) % count];
}

} // namespace

void *astring_pool::allocate (size_t size) {
  if constexpr (!platform::under_address_sanitizer) {
    --height;
    if (void *block = place ().exchange (nullptr, std::memory_order_acquire))
      return block;
  }
  return ::operator new (size);
}

void astring_pool::release (void *block) noexcept {
  if constexpr (!platform::under_address_sanitizer) {
    void *nothing = nullptr;
    const bool is_kept = place ().compare_exchange_strong (nothing, block, std::memory_order_release,
                                                           std::memory_order_relaxed);
    ++height;
    if (is_kept)
      return;
  }
  ::operator delete (block);
}

size_t astring_pool::free_all () noexcept {
  size_t freed = 0;
  for (std::atomic<void *> &at : kept)
    if (void *block = at.exchange (nullptr, std::memory_order_acquire)) {
      ::operator delete (block);
      ++freed;
    }
  return freed;
}
