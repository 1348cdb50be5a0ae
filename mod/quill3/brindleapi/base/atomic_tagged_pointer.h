#pragma once

#include <cstdint>

/// A pointer and a generation, which one 16-byte swap replaces together. Every swap raises the generation. So
/// a pointer that was replaced and then stored again differs from one that was never replaced.
struct TaggedPointer {
  uint64_t pointer = 0;
  uint64_t generation = 0;

  bool operator== (const TaggedPointer &) const noexcept = default;
};

/// A `TaggedPointer` that any number of threads may read and change. All three operations use the processor's
/// 16-byte compare and swap. A load does too, and so writes the cache line that it reads.
class atomic_tagged_pointer {
public:
  atomic_tagged_pointer () noexcept = default;
  explicit atomic_tagged_pointer (TaggedPointer value) noexcept : words_ (bits (value)) {}
  atomic_tagged_pointer (const atomic_tagged_pointer &) = delete;
  atomic_tagged_pointer &operator= (const atomic_tagged_pointer &) = delete;

  TaggedPointer load () const noexcept { return value (__sync_val_compare_and_swap (&words_, 0, 0)); }
  void store (TaggedPointer desired) noexcept {
    while (!compare_and_swap (load (), desired)) {
    }
  }
  /// One attempt. @return true if the value was @p expected and is @p desired now.
  bool compare_and_swap (TaggedPointer expected, TaggedPointer desired) noexcept {
    return __sync_bool_compare_and_swap (&words_, bits (expected), bits (desired));
  }

private:
  __extension__ using Words = unsigned __int128;

  static Words bits (TaggedPointer value) noexcept {
    return (static_cast<Words> (value.generation) << 64) | value.pointer;
  }
  static TaggedPointer value (Words words) noexcept {
    return {static_cast<uint64_t> (words), static_cast<uint64_t> (words >> 64)};
  }

  alignas (16) mutable Words words_ = 0;
};
