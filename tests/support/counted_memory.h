#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

/// Counts the memory that is allocated with `new` in the whole process, and can make allocations fail.
/// Including this replaces the operators, so it is for a test program of its own, in one of its sources.
namespace support {

inline std::atomic<int64_t> living_blocks{0};
inline std::atomic<int64_t> living_bytes{0};

/// The number of allocations, without those of threads that have set `spared`.
inline std::atomic<int64_t> allocations{0};

/// How many allocations succeed before one fails, of this thread or of all threads that have not set
/// `spared`. Below 0 none fails.
inline thread_local long until_failure = -1;
inline std::atomic<long> until_failure_of_others{-1};
inline thread_local bool spared = false;

namespace counted {

inline bool has_run_out () noexcept {
  if (until_failure >= 0 && until_failure-- == 0)
    return true;
  return !spared && until_failure_of_others >= 0 && until_failure_of_others-- == 0;
}

// The size is stored in front of the block.
constexpr std::size_t front = 16;

inline void *allocate (std::size_t size) noexcept {
  void *const block = has_run_out () ? nullptr : std::malloc (size + front);
  if (block == nullptr)
    return nullptr;
  *static_cast<std::size_t *> (block) = size;
  allocations += spared ? 0 : 1;
  ++living_blocks;
  living_bytes += static_cast<int64_t> (size);
  return static_cast<char *> (block) + front;
}

inline void release (void *memory) noexcept {
  if (memory == nullptr)
    return;
  void *const block = static_cast<char *> (memory) - front;
  --living_blocks;
  living_bytes -= static_cast<int64_t> (*static_cast<std::size_t *> (block));
  std::free (block);
}

} // namespace counted

/// Makes the call again and again. Its first allocation on this thread fails, then its second, and so on,
/// until none of its allocations is left to fail. After each failure, `check` is called with the result of
/// the call.
/// @return how many allocations there were to fail
template <class Call, class Check>
unsigned fail_each_allocation (Call call, Check check) {
  for (unsigned n = 0;; ++n) {
    until_failure = n;
    const auto result = call ();
    const bool failed = until_failure < 0;
    until_failure = -1;
    if (!failed)
      return n;
    check (result);
  }
}

} // namespace support

// Not inlined: next to a new, a compiler takes the call of free for a mistake.

[[gnu::noinline]] void *operator new (std::size_t size) {
  void *const memory = support::counted::allocate (size);
  if (memory == nullptr)
    throw std::bad_alloc ();
  return memory;
}
[[gnu::noinline]] void *operator new (std::size_t size, const std::nothrow_t &) noexcept {
  return support::counted::allocate (size);
}
[[gnu::noinline]] void *operator new[] (std::size_t size) {
  return operator new (size);
}
[[gnu::noinline]] void *operator new[] (std::size_t size, const std::nothrow_t &) noexcept {
  return support::counted::allocate (size);
}
[[gnu::noinline]] void operator delete (void *memory) noexcept {
  support::counted::release (memory);
}
[[gnu::noinline]] void operator delete (void *memory, std::size_t) noexcept {
  support::counted::release (memory);
}
[[gnu::noinline]] void operator delete (void *memory, const std::nothrow_t &) noexcept {
  support::counted::release (memory);
}
[[gnu::noinline]] void operator delete[] (void *memory) noexcept {
  support::counted::release (memory);
}
[[gnu::noinline]] void operator delete[] (void *memory, std::size_t) noexcept {
  support::counted::release (memory);
}
[[gnu::noinline]] void operator delete[] (void *memory, const std::nothrow_t &) noexcept {
  support::counted::release (memory);
}
