#pragma once

#include "api/basics/mutex.h"

#include <cstdint>
#include <list>
#include <set>
#include <utility>

/// The notices of one connection that wait for a caller: which kind of value has changed on which channel. A
/// pair is queued once, however often its value changes. There are 72 pairs at most, so a slow caller never
/// falls behind. Any thread may call any member.
class Notifier {
public:
  /// Queues a notice unless it is queued already, and wakes all threads that wait for one.
  /// @param kind an OrvaNotice but ORVA_NOTICE_NONE
  void post (uint32_t kind, uint32_t channel);

  /// Takes the notice that has waited longest. It is removed from the queue before anyone acts on it, so a
  /// change right after it raises a new one.
  /// @param timeout in milliseconds; 0 does not wait. 0xFFFFFFFF is 49 days, not for ever.
  /// @param kind, channel receive the notice, or 0 and 0 when the time is up; either may be null
  void take (uint32_t timeout, uint32_t *kind, uint32_t *channel);

private:
  using Notice = std::pair<uint32_t, uint32_t>; ///< kind and channel

  Notice take_front () KELVANE_REQUIRES (lock_);

  Mutex lock_;
  Condition posted_;
  // Both hold the same pairs.
  std::list<Notice> queue_ KELVANE_GUARDED_BY (lock_); ///< first in, first out
  std::set<Notice> queued_ KELVANE_GUARDED_BY (lock_);
};
