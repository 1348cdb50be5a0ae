#pragma once

#include <condition_variable>
#include <mutex>

namespace support {

/// A counting semaphore. Not the standard library's: that of g++ 12 for Windows looks at its count before it
/// takes the lock that it sleeps with, and so can sleep through a release.
class Semaphore {
public:
  explicit Semaphore (unsigned count = 0) : count_ (count) {}

  void release () {
    const std::lock_guard hold (lock_);
    ++count_;
    released_.notify_one ();
  }
  void acquire () {
    std::unique_lock hold (lock_);
    released_.wait (hold, [this] { return count_ != 0; });
    --count_;
  }

private:
  std::mutex lock_;
  std::condition_variable released_;
  unsigned count_;
};

} // namespace support
