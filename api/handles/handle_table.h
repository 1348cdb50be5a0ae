#pragma once

#include "api/basics/mutex.h"
#include "api/handles/numbers.h"

#include <array>
#include <cstdint>
#include <map>
#include <utility>

/// Values behind numbers that callers hold: connections, lists, snapshots of clips, stores. A number stays
/// known until it is closed. The table has several parts with a lock each, so that threads which use
/// different numbers seldom wait for each other. These locks are held for operations on a map and on one
/// value only. Any thread may call any member.
template <class T>
class HandleTable {
public:
  /// Throws std::bad_alloc when the system cannot make a lock.
  /// @param next_number returns the numbers; a number that is in use is skipped
  explicit HandleTable (uint32_t (*next_number) () noexcept = next_unique_number)
      : next_number_ (next_number) {}
  HandleTable (const HandleTable &) = delete;
  HandleTable &operator= (const HandleTable &) = delete;

  /// Enters a value, which is moved. @return its number.
  uint32_t open (T value) {
    for (;;) {
      const uint32_t handle = next_number_ ();
      Part &part = part_of (handle);
      const ShortScope hold (part.lock);
      if (part.values.try_emplace (handle, std::move (value)).second)
        return handle;
    }
  }

  /// Takes a value out. @return it, an empty one when the number is unknown.
  T take (uint32_t handle) {
    Node taken = extract (handle);
    return taken ? std::move (taken.mapped ()) : T ();
  }

  /// Takes a value out and destroys it, outside the lock; an unknown number does nothing.
  void close (uint32_t handle) { take (handle); }

  /// The same, and a thread that looks up this number meanwhile waits until the value has been destroyed.
  void close_and_hold (uint32_t handle) {
    const AMutexScope hold (closing_);
    extract (handle);
  }

  /// A copy of the value, an empty one when the number is unknown.
  T find (uint32_t handle) {
    T copy{};
    visit (handle, [&] (const T &value) { copy = value; });
    return copy;
  }

  /// Calls @p visit with the value, under the lock. @return false when the number is unknown.
  template <class Visit>
  bool visit (uint32_t handle, Visit visit) {
    if (visit_known (handle, visit))
      return true;
    const AMutexScope until_closed (closing_);
    return false;
  }

private:
  using Node = typename std::map<uint32_t, T>::node_type;
  struct alignas (64) Part { // a cache line, so that its lock shares none with another
    ShortMutex lock;
    std::map<uint32_t, T> values KELVANE_GUARDED_BY (lock);
  };

  Node extract (uint32_t handle) {
    Part &part = part_of (handle);
    const ShortScope hold (part.lock);
    return part.values.extract (handle);
  }

  template <class Visit>
  bool visit_known (uint32_t handle, Visit &visit) {
    Part &part = part_of (handle);
    const ShortScope hold (part.lock);
    const auto found = part.values.find (handle);
    if (found == part.values.end ())
      return false;
    visit (found->second);
    return true;
  }

  Part &part_of (uint32_t handle) { return parts_[handle % parts_.size ()]; }

  uint32_t (*const next_number_) () noexcept;
  std::array<Part, 16> parts_;
  Mutex closing_; ///< held while a value is destroyed that others wait for
};
