// A queue in steady use allocates nothing: this program counts what the heap is asked for.

#include "base/atomic_vqueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<unsigned> allocations = 0;
}

[[gnu::noinline]] void *operator new (size_t size) {
  ++allocations;
  if (void *memory = std::malloc (size))
    return memory;
  throw std::bad_alloc ();
}
[[gnu::noinline]] void *operator new (size_t size, std::align_val_t) {
  ++allocations;
  if (void *memory = std::malloc (size)) // 16 bytes is what malloc gives and what a node needs
    return memory;
  throw std::bad_alloc ();
}
[[gnu::noinline]] void operator delete (void *memory) noexcept {
  std::free (memory);
}
[[gnu::noinline]] void operator delete (void *memory, size_t) noexcept {
  std::free (memory);
}
[[gnu::noinline]] void operator delete (void *memory, std::align_val_t) noexcept {
  std::free (memory);
}
[[gnu::noinline]] void operator delete (void *memory, size_t, std::align_val_t) noexcept {
  std::free (memory);
}

TEST (AVQueue, reuses_its_nodes) {
  int value = 0;
  AVQueue queue;
  for (int i = 0; i != 10; ++i)
    queue.push (&value);
  while (queue.pop () != nullptr) {
  }
  const unsigned before = allocations;
  for (int round = 0; round != 100000; ++round) {
    for (int i = 0; i != 10; ++i)
      queue.push (&value);
    for (int i = 0; i != 10; ++i)
      queue.pop ();
  }
  EXPECT_EQ (allocations, before);
}

TEST (AVQueue, gives_its_nodes_back) {
  int value = 0;
  const auto life = [&] {
    AVQueue queue;
    for (int i = 0; i != 10; ++i)
      queue.push (&value);
    queue.pop ();
  };
  life ();
  const unsigned before = allocations;
  life ();
  EXPECT_EQ (allocations, before);
}
