#include "base/atomic_impl.h"

#include "base/amutex.h"

bool atomic_compare_and_set_64 (uint64_t *p, uint64_t expected, uint64_t desired) {
  static AMutex &all = *new AMutex;
  if (!KELVANE_ASSERT (uintptr_t (p) % sizeof (uint64_t) == 0))
    return false;
  all.lock ();
  std::atomic_ref<uint64_t> word (*p);
  bool equal = word.load (std::memory_order_acquire) == expected;
  if (equal)
    word.store (desired, std::memory_order_release);
  all.unlock ();
  return equal;
}
