#include "api/notify.h"

#include "base/kelvane_assert.h"

#include <chrono>

void Notifier::post (uint32_t kind, uint32_t channel) {
  const Notice notice (kind, channel);
  {
    const std::lock_guard hold (lock_);
    if (notice_set_.contains (notice))
      return;
    std::list<Notice> place (1, notice); // what needs memory comes first
    notice_set_.insert (notice);
    notice_order_.splice (notice_order_.end (), place);
  }
  changed_.notify_all ();
}

void Notifier::take (uint32_t timeout, uint32_t *kind, uint32_t *channel) {
  std::unique_lock hold (lock_);
  const bool any = changed_.wait_for (hold, std::chrono::milliseconds (timeout),
                                      [this] { return !notice_order_.empty (); });
  const Notice notice = any ? take_front () : Notice (0, 0);
  if (kind != nullptr)
    *kind = notice.first;
  if (channel != nullptr)
    *channel = notice.second;
}

Notifier::Notice Notifier::take_front () {
  if (!KELVANE_ASSERT (!notice_order_.empty ()))
    return Notice (0, 0);
  const Notice notice = notice_order_.front ();
  notice_order_.pop_front ();
  notice_set_.erase (notice);
  return notice;
}
