#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

/// Counts what `new` has given and not got back, in the whole process, and lets it run out. For programs of
/// their own: including this replaces the operators, so one source of a program includes it.
namespace support {

inline std::atomic<int64_t> living_blocks{0};
inline std::atomic<int64_t> living_bytes{0};

/// How many allocations threads have made that are not spared.
inline std::atomic<int64_t> allocations{0};

/// Lets one allocation fail: after so many that succeed, of this thread or of all threads that are not
/// spared; below 0, none.
inline thread_local long until_failure = -1;
inline std::atomic<long> until_failure_of_others{-1};
inline thread_local bool spared = false;

namespace counted {

inline bool has_run_out () noexcept {
  if (until_failure >= 0 && until_failure-- == 0)
    return true;
  return !spared && until_failure_of_others >= 0 && until_failure_of_others-- == 0;
}

// The size stands in front of what is given.
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

/// Makes the call with its allocation of this thread failing that comes after n others, for n from 0 up,
/// until it needs no more of them. After each failure calls `check` with what the call gave.
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
