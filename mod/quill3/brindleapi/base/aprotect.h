#pragma once

#include "base/amutex.h"

#include <memory>
#include <new>

/// A value that can only be used with its mutex held. Any thread may call `lock`. The accessor that it
/// returns stays on that thread. The mutex is recursive, so code that holds an accessor may lock again.
template <class T>
class AProtect {
  struct ItemObject {
    AMutex mutex;
    T value{};
  };

public:
  /// Access to the value. Copies share the lock, which the last copy unlocks. The value lives as long as an
  /// accessor, even when the `AProtect` has been destroyed.
  class Accessor {
  public:
    Accessor (const Accessor &) = default;
    Accessor (Accessor &&) noexcept = default;
    // By swapping, so that the old item is destroyed after its lock.
    Accessor &operator= (Accessor other) noexcept {
      std::swap (item_, other.item_);
      std::swap (lock_, other.lock_);
      return *this;
    }
    T *operator->() const noexcept { return &item_->value; }
    T &operator* () const noexcept { return item_->value; }

  private:
    friend class AProtect;
    explicit Accessor (std::shared_ptr<ItemObject> item) : item_ (std::move (item)), lock_ (&item_->mutex) {}
    std::shared_ptr<ItemObject> item_; // declared first: it outlives the lock on its mutex
    AMutexLock lock_;
  };

  /// Throws std::bad_alloc when the system has no mutex left.
  AProtect () : item_ (std::make_shared<ItemObject> ()) {
    if (!item_->mutex.is_valid ())
      throw std::bad_alloc ();
  }
  AProtect (const AProtect &) = delete;
  AProtect &operator= (const AProtect &) = delete;

  /// Waits for the mutex.
  Accessor lock () const { return Accessor (item_); }

private:
  std::shared_ptr<ItemObject> item_;
};
