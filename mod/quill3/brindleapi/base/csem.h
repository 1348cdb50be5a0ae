#pragma once

#include "platform/kernel_objects.h"

/// A counting semaphore with a maximum. Any thread may wait and post; it is destroyed when nobody waits.
class csem {
public:
  static constexpr unsigned INFINITE_TIME = platform::infinite;

  /// @param initial count at first, at most @p maximum. @param maximum at least 1. When the system has no
  /// semaphore left, the first wait fails.
  csem (unsigned initial, unsigned maximum);
  csem (const csem &) = delete;
  csem &operator= (const csem &) = delete;
  ~csem ();

  /// Whether the system had a semaphore left.
  bool is_valid () const noexcept { return sem_ != nullptr; }

  /// Lowers the count by one, and waits for that at most @p milliseconds. `INFINITE_TIME` is without limit;
  /// with 0 it returns at once.
  /// @return true when the count was taken, false when the time ran out. Interruptions do not shorten the
  /// wait.
  bool wait (unsigned milliseconds = INFINITE_TIME);
  /// Waits @p count times without limit. @return @p count.
  unsigned wait_count (unsigned count);
  /// Adds @p count in one step. @return false, adding nothing, when that would pass the maximum.
  bool post (unsigned count);

protected:
  platform::SemaphoreHandle handle () const noexcept { return sem_; }

private:
  platform::SemaphoreHandle sem_;
};
