#pragma once

#include "base/amutex.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

/// The mutex of everything in `api/`: an `AMutex` that is always valid. Held with `AMutexScope`.
class KELVANE_CAPABILITY ("mutex") Mutex : public AMutex {
public:
  /// Throws std::bad_alloc when the system cannot make a mutex.
  Mutex () {
    if (!is_valid ())
      throw std::bad_alloc ();
  }
};

/// A mutex that is held for some instructions only, while nothing waits. It is not recursive. It costs a
/// third of a `Mutex`. Held with `ShortScope`.
class KELVANE_CAPABILITY ("mutex") ShortMutex {
public:
  ShortMutex () = default;
  ShortMutex (const ShortMutex &) = delete;
  ShortMutex &operator= (const ShortMutex &) = delete;

  void lock () KELVANE_ACQUIRE () KELVANE_NO_THREAD_SAFETY_ANALYSIS { mutex_.lock (); }
  void unlock () KELVANE_RELEASE () KELVANE_NO_THREAD_SAFETY_ANALYSIS { mutex_.unlock (); }

private:
  std::mutex mutex_;
};

/// Holds a short mutex for the length of a block.
class KELVANE_SCOPED_CAPABILITY ShortScope {
public:
  explicit ShortScope (ShortMutex &mutex) KELVANE_ACQUIRE (mutex) : mutex_ (mutex) { mutex.lock (); }
  ShortScope (const ShortScope &) = delete;
  ShortScope &operator= (const ShortScope &) = delete;
  ~ShortScope () KELVANE_RELEASE () { mutex_.unlock (); }

private:
  ShortMutex &mutex_;
};

/// Releases a held mutex for the length of a block, and takes it again at the end, also when something
/// throws.
class KELVANE_SCOPED_CAPABILITY MutexRelease {
public:
  explicit MutexRelease (Mutex &mutex) noexcept KELVANE_RELEASE (mutex) : mutex_ (mutex) { mutex_.unlock (); }
  MutexRelease (const MutexRelease &) = delete;
  MutexRelease &operator= (const MutexRelease &) = delete;
  ~MutexRelease () KELVANE_RELEASE () KELVANE_NO_THREAD_SAFETY_ANALYSIS { mutex_.lock (); }

private:
  Mutex &mutex_;
};

/// Lets threads wait for something that is guarded by a mutex. The waiting thread holds the mutex once; it is
/// released during the wait, and held again when @p condition is called and when the wait returns. Any thread
/// may call any member.
class Condition {
public:
  /// Waits without limit until @p condition returns true.
  template <class Predicate>
  void wait (Mutex &mutex, Predicate condition) KELVANE_REQUIRES (mutex) KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    changed_.wait (mutex, condition);
  }

  /// The same with a limit. @param milliseconds of the steady clock; all-ones is a long time, not for ever.
  /// @return what @p condition returned last
  template <class Predicate>
  bool wait_for (Mutex &mutex, uint32_t milliseconds, Predicate condition)
      KELVANE_REQUIRES (mutex) KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    return changed_.wait_for (mutex, std::chrono::milliseconds (milliseconds), condition);
  }

  /// Wakes all waiting threads. Each calls its condition again.
  void notify_all () noexcept { changed_.notify_all (); }

private:
  std::condition_variable_any changed_;
};
