#pragma once

#include <atomic>
#include <memory>

/// Whether @p owner is the only one to share its object, so that it may be changed in place. When it is, this
/// thread sees everything that other threads did to the object before they dropped their pointers. Any thread
/// may call this with its own pointer.
template <class T>
bool is_sole_owner (const std::shared_ptr<T> &owner) noexcept {
  if (owner.use_count () != 1)
    return false;
#ifdef __SANITIZE_THREAD__
  const std::shared_ptr<T> acquired = owner; // the sanitizer knows counts, not fences
#else
  std::atomic_thread_fence (std::memory_order_acquire);
#endif
  return true;
}
