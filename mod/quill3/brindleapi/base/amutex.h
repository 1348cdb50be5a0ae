#pragma once

#include "base/aref.h"
#include "base/thread_annotations.h"
#include "platform/kernel_objects.h"

/// A recursive mutex of the operating system. Its owner may lock it again and must unlock it as often. When
/// the system had no mutex left, every operation fails and does nothing, and the caller runs without a lock.
/// Any thread may lock. The thread that locked must unlock.
class KELVANE_CAPABILITY ("mutex") AMutex {
public:
  AMutex () noexcept : AMutex (platform::mutex_create ()) {}
  /// Takes over a handle, null for no mutex.
  explicit AMutex (platform::MutexHandle handle) noexcept : handle_ (handle) {}
  AMutex (const AMutex &) = delete;
  AMutex &operator= (const AMutex &) = delete;
  /// No thread holds it any more.
  ~AMutex () { platform::mutex_close (handle_); }

  /// Whether the system had a mutex left.
  bool is_valid () const noexcept { return handle_ != nullptr; }

  /// Waits without limit. @return true when the mutex is held now.
  bool lock () noexcept KELVANE_ACQUIRE () KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    return platform::mutex_lock (handle_);
  }
  /// @return false when the calling thread does not hold the mutex.
  bool unlock () noexcept KELVANE_RELEASE () KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    return platform::mutex_unlock (handle_);
  }

private:
  platform::MutexHandle handle_;
};

/// Holds a mutex for the length of a block. It allocates nothing and so can't throw.
class KELVANE_SCOPED_CAPABILITY AMutexScope {
public:
  /// Waits until @p mutex is held.
  explicit AMutexScope (AMutex &mutex) noexcept KELVANE_ACQUIRE (mutex)
      : mutex_ (mutex), locked_ (mutex.lock ()) {}
  AMutexScope (const AMutexScope &) = delete;
  AMutexScope &operator= (const AMutexScope &) = delete;
  ~AMutexScope () KELVANE_RELEASE () {
    if (locked_)
      mutex_.unlock ();
  }

private:
  AMutex &mutex_;
  bool locked_;
};

/// A held lock that can be copied and passed by value. The mutex is unlocked when the last copy is destroyed.
/// That must happen on the thread that locked.
class AMutexLock {
public:
  /// Holds nothing.
  AMutexLock () noexcept = default;
  /// Waits until @p mutex is held. Null, or a mutex that can't be locked, leaves the lock empty.
  explicit AMutexLock (AMutex *mutex) KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    if (mutex == nullptr)
      return;
    ARef<Holding> holding = ARef<Holding>::create ();
    if (mutex->lock ()) {
      holding->mutex = mutex;
      holding_ = std::move (holding);
    }
  }
  /// Whether the lock was obtained.
  bool is_locked () const noexcept { return !holding_.is_null (); }

private:
  struct Holding {
    Holding () noexcept = default;
    Holding (const Holding &) = delete;
    Holding &operator= (const Holding &) = delete;
    ~Holding () KELVANE_NO_THREAD_SAFETY_ANALYSIS {
      if (mutex != nullptr)
        mutex->unlock ();
    }
    AMutex *mutex = nullptr;
  };

  ARef<Holding> holding_;
};
