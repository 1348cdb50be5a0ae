/// The shared store behind AString: a chain of segments of 64 code points each.
#pragma once

#include "base/achar.h"
#include "base/aref.h"
#include "base/astring_pool.h"

#include <memory>

/// A link of the chain. Every segment but the last of a store is full, and none is empty.
struct AStringSegment {
  static constexpr uint64_t capacity = 64;

  AStringSegment () {} // leaves the code points unset
  AStringSegment (const AStringSegment &) = delete;
  AStringSegment &operator= (const AStringSegment &) = delete;

  AStringSegment *next = nullptr;
  union {
    AChar buf[capacity];
  };
  uint64_t buflen = 0;

  bool full () const { return buflen == capacity; }
};

/// A position in a store. It is valid only for the string that produced it, while that string or a copy of it
/// lives.
struct AStringPosition {
  const AStringSegment *current_segment = nullptr;
  uint64_t segment_offset = 0;    ///< index inside the segment
  uint64_t absolute_position = 0; ///< index in the store, not in the view
};

/// A sequence of code points that is written once, by one thread, and read-only for ever after `finish`.
/// A finished store may be read by any number of threads. What was built never moves.
struct AStringStorage {
  AStringStorage () = default;
  AStringStorage (const AStringStorage &) = delete;
  AStringStorage &operator= (const AStringStorage &) = delete;
  ~AStringStorage ();

  bool is_ctor_done () const { return ctor_done; }

  // Writing, until `finish`.
  void append (AChar c);
  void append_uint32 (const AChar *text, uint64_t count);
  void append_uint32 (const uint32_t *text, uint64_t count);
  /// Each byte becomes the code point of the same value.
  void append_latin1 (const char *text, uint64_t count);
  /// Ends the writing.
  void finish ();

  // Reading, after `finish`. Each returns false and leaves `pos` unchanged where there is no such position.
  // All take constant time.
  bool seek (AStringPosition *pos, uint64_t index) const;
  bool next (AStringPosition *pos) const;
  bool skip (AStringPosition *pos, uint64_t skip_count) const;
  bool previous (AStringPosition *pos) const;
  /// The number of code points from `pos` to the end of its segment, and their address.
  uint64_t run (const AStringPosition *pos, const AChar **address) const;

  bool ctor_done = false;
  AStringSegment *head = nullptr;
  AStringSegment *tail = nullptr;
  uint64_t len = 0;

private:
  template <class Unit>
  void append_units (const Unit *text, uint64_t count);
  AStringSegment *add_segment ();
  AStringSegment *room ();
  const AStringSegment *segment_at (uint64_t number) const;

  AStringSegment first_; // short texts need no second allocation
  // The segments by number, for stores of more than a few. Without it, a search with random access to a long
  // text would be quadratic.
  std::unique_ptr<const AStringSegment *[]> by_number_;
};

/// A store has its memory from the pool, so a text of one segment seldom needs the heap.
template <>
struct ARefMemory<AStringStorage> {
  static void *operator new (size_t size) { return astring_pool::allocate (size); }
  static void operator delete (void *block) noexcept { astring_pool::release (block); }
};
