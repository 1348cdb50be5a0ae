#pragma once

#include "api/basics/mutex.h"
#include "api/handles/numbers.h"

#include <cstdint>
#include <map>
#include <utility>

/// Values behind numbers that callers hold: connections, lists, snapshots of clips, stores. A number stays
/// known until it is closed. The lock is held for operations on the map and on one value only, with the
/// exception of `close_under_lock`. Any thread may call any member.
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
      const AMutexScope hold (lock_);
      if (values_.try_emplace (handle, std::move (value)).second)
        return handle;
    }
  }

  /// Takes a value out. @return it, an empty one when the number is unknown.
  T take (uint32_t handle) {
    typename std::map<uint32_t, T>::node_type taken;
    {
      const AMutexScope hold (lock_);
      taken = values_.extract (handle);
    }
    return taken ? std::move (taken.mapped ()) : T ();
  }

  /// Takes a value out and destroys it, outside the lock; an unknown number does nothing.
  void close (uint32_t handle) { take (handle); }

  /// The same under the lock: a thread that looks up a value waits until this one has been destroyed.
  void close_under_lock (uint32_t handle) {
    const AMutexScope hold (lock_);
    values_.erase (handle);
  }

  /// A copy of the value, an empty one when the number is unknown.
  T find (uint32_t handle) {
    const AMutexScope hold (lock_);
    const auto found = values_.find (handle);
    return found == values_.end () ? T () : found->second;
  }

  /// Calls @p visit with the value, under the lock. @return false when the number is unknown.
  template <class Visit>
  bool visit (uint32_t handle, Visit visit) {
    const AMutexScope hold (lock_);
    const auto found = values_.find (handle);
    if (found == values_.end ())
      return false;
    visit (found->second);
    return true;
  }

private:
  uint32_t (*const next_number_) () noexcept;
  Mutex lock_;
  std::map<uint32_t, T> values_ KELVANE_GUARDED_BY (lock_);
};
