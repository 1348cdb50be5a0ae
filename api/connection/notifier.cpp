#include "api/connection/notifier.h"

#include "base/kelvane_assert.h"

void Notifier::post (uint32_t kind, uint32_t channel) {
  const Notice notice (kind, channel);
  {
    const AMutexScope hold (lock_);
    if (queued_.contains (notice))
      return;
    std::list<Notice> entry (1, notice); // what needs memory is done first
    queued_.insert (notice);
    queue_.splice (queue_.end (), entry);
  }
  posted_.notify_all ();
}

void Notifier::take (uint32_t timeout, uint32_t *kind, uint32_t *channel) {
  const AMutexScope hold (lock_);
  const bool any =
      posted_.wait_for (lock_, timeout, [this] () KELVANE_REQUIRES (lock_) { return !queue_.empty (); });
  const Notice notice = any ? take_front () : Notice (0, 0);
  if (kind != nullptr)
    *kind = notice.first;
  if (channel != nullptr)
    *channel = notice.second;
}

Notifier::Notice Notifier::take_front () {
  if (!KELVANE_ASSERT (!queue_.empty ()))
    return Notice (0, 0);
  const Notice notice = queue_.front ();
  queue_.pop_front ();
  queued_.erase (notice);
  return notice;
}
