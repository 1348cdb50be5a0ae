#pragma once

#include "api/connection_registry.h"
#include "base/amutex.h"

#include <cstdint>
#include <map>
#include <new>
#include <utility>

/// Values behind numbers that callers hold. Every number is new to the process, connections included, and
/// stays known until it is closed. The lock is held for operations on the map and on one value only. Any
/// thread may call any member.
template <class T>
class HandleTable {
public:
  /// @param draw where numbers come from; one that is in use is passed over. Throws std::bad_alloc when there
  ///   is no lock to be had.
  explicit HandleTable (uint32_t (*draw) () = next_unique_number) : draw_ (draw) {
    if (!lock_.is_valid ())
      throw std::bad_alloc ();
  }
  HandleTable (const HandleTable &) = delete;
  HandleTable &operator= (const HandleTable &) = delete;

  /// Enters a value, which is moved. @return its number.
  uint32_t open (T value) {
    for (;;) {
      const uint32_t handle = draw_ ();
      const AMutexScope hold (lock_);
      if (values_.try_emplace (handle, std::move (value)).second)
        return handle;
    }
  }

  /// Takes a value out; an unknown number does nothing. The value dies outside the lock.
  void close (uint32_t handle) {
    typename std::map<uint32_t, T>::node_type closed;
    const AMutexScope hold (lock_);
    closed = values_.extract (handle);
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
  uint32_t (*const draw_) ();
  AMutex lock_;
  std::map<uint32_t, T> values_ KELVANE_GUARDED_BY (lock_);
};
