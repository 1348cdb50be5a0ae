#include "base/atomic_uint64.h"

void atomic_uint64::store (uint64_t value) {
  while (!compare_and_set (load (), value)) {
  }
}

uint64_t atomic_uint64::add (uint64_t amount) {
  uint64_t before = load ();
  while (!compare_and_set (before, before + amount))
    before = load ();
  return before + amount;
}
