#include "base/atomic_vqueue.h"

#include "base/atomic_tagged_pointer.h"
#include "base/atomic_uint64.h"
#include "base/runonce.h"
#include "support/assert_counter.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <thread>
#include <vector>

namespace {

void *pointer (uintptr_t number) {
  return reinterpret_cast<void *> (number);
}
uintptr_t number (void *pointer) {
  return reinterpret_cast<uintptr_t> (pointer);
}

TEST (atomic_uint64, one_thread) {
  atomic_uint64 word;
  EXPECT_EQ (word.load (), 0u);
  EXPECT_EQ (++word, 1u);
  EXPECT_EQ (word++, 1u);
  EXPECT_EQ (--word, 1u);
  EXPECT_EQ (word--, 1u);
  EXPECT_EQ (--word, UINT64_MAX);
  word.store (0x100000000);
  EXPECT_EQ (word += uint32_t{0xFFFFFFFF}, 0x1FFFFFFFFu);
  EXPECT_EQ (word += int32_t{-1}, 0x1FFFFFFFEu);
  EXPECT_EQ (word -= int32_t{-2}, 0x200000000u);
  EXPECT_EQ (word -= int64_t{1}, 0x1FFFFFFFFu);
  EXPECT_EQ (word -= uint64_t{0x1FFFFFFFF}, 0u);
  EXPECT_EQ (word += uint64_t{7}, 7u);
  EXPECT_FALSE (word.compare_and_set (8, 9));
  EXPECT_EQ (word.load (), 7u);
  EXPECT_TRUE (word.compare_and_set (7, 9));
  EXPECT_EQ (word.load (), 9u);
  EXPECT_EQ (atomic_uint64 (5).load (), 5u);
}

TEST (atomic_uint64, threads_lose_no_step) {
  atomic_uint64 word;
  std::vector<std::thread> threads;
  for (int t = 0; t != 4; ++t)
    threads.emplace_back ([&] {
      for (int i = 0; i != 2000; ++i)
        ++word;
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (word.load (), 8000u);
}

TEST (atomic_tagged_pointer, swaps_both_words_or_none) {
  atomic_tagged_pointer word;
  EXPECT_EQ (word.load (), (TaggedPointer{0, 0}));
  word.store ({1, UINT64_MAX});
  EXPECT_EQ (word.load (), (TaggedPointer{1, UINT64_MAX}));
  EXPECT_FALSE (word.compare_and_swap ({1, 0}, {2, 2}));
  EXPECT_FALSE (word.compare_and_swap ({0, UINT64_MAX}, {2, 2}));
  EXPECT_EQ (word.load (), (TaggedPointer{1, UINT64_MAX}));
  EXPECT_TRUE (word.compare_and_swap ({1, UINT64_MAX}, {3, 4}));
  EXPECT_EQ (word.load (), (TaggedPointer{3, 4}));
}

TEST (atomic_tagged_pointer, both_words_move_together) {
  atomic_tagged_pointer word;
  std::atomic<unsigned> torn = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t != 4; ++t)
    threads.emplace_back ([&] {
      for (int i = 0; i != 5000; ++i) {
        const TaggedPointer seen = word.load ();
        torn += seen.pointer != ~seen.generation && seen != TaggedPointer{};
        word.compare_and_swap (seen, {~(seen.generation + 1), seen.generation + 1});
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (torn, 0u);
}

unsigned runs = 0;

TEST (RunOnce, runs_its_function_when_constructed) {
  runs = 0;
  const RunOnce once ([] { ++runs; });
  EXPECT_EQ (runs, 1u);
}

TEST (RunOnce, null_function_reports) {
  AssertCounter failures;
  const RunOnce once (nullptr);
  EXPECT_EQ (failures.count (), 1u);
}

// A queue may be built and used before main.
AVQueue early_queue;
const unsigned early_length = early_queue.push (pointer (42));

TEST (AVQueue, works_during_static_initialisation) {
  EXPECT_EQ (early_length, 0u);
  EXPECT_EQ (number (early_queue.pop ()), 42u);
}

TEST (AVQueue, empty_gives_null_and_stays_empty) {
  AVQueue queue;
  EXPECT_EQ (queue.pop (), nullptr);
  EXPECT_EQ (queue.length (), 0u);
}

TEST (AVQueue, push_gives_the_old_length_and_order_is_kept) {
  AVQueue queue;
  EXPECT_EQ (queue.push (pointer (1)), 0u);
  EXPECT_EQ (queue.push (pointer (2)), 1u);
  EXPECT_EQ (queue.push (pointer (3)), 2u);
  EXPECT_EQ (number (queue.pop ()), 1u);
  EXPECT_EQ (queue.push (pointer (4)), 2u);
  EXPECT_EQ (number (queue.pop ()), 2u);
  EXPECT_EQ (number (queue.pop ()), 3u);
  EXPECT_EQ (number (queue.pop ()), 4u);
  EXPECT_EQ (queue.pop (), nullptr);
}

TEST (AVQueue, null_values_count_but_look_like_an_empty_queue) {
  AVQueue queue;
  queue.push (nullptr);
  EXPECT_EQ (queue.length (), 1u);
  EXPECT_EQ (queue.pop (), nullptr);
  EXPECT_EQ (queue.length (), 0u);
}

TEST (AVQueue, destruction_drops_what_is_left) {
  int value = 7;
  {
    AVQueue queue;
    queue.push (&value);
    queue.push (nullptr);
    queue.push (&value);
  }
  EXPECT_EQ (value, 7);
}

TEST (AVQueue, behaves_as_a_deque_on_one_thread) {
  AVQueue queue;
  std::deque<uintptr_t> model;
  uint32_t random = 1;
  for (uintptr_t i = 1; i != 200000; ++i) {
    random = random * 1664525 + 1013904223;
    if ((random >> 28) < 9) {
      ASSERT_EQ (queue.push (pointer (i)), model.size ());
      model.push_back (i);
      continue;
    }
    const uintptr_t expected = model.empty () ? 0 : model.front ();
    if (!model.empty ())
      model.pop_front ();
    ASSERT_EQ (number (queue.pop ()), expected);
    ASSERT_EQ (queue.length (), model.size ());
  }
}

// Each value is a producer's number and its count, so that a consumer sees whether an order is broken.
TEST (AVQueue, many_producers_and_consumers_lose_nothing) {
  constexpr uintptr_t producers = 8;
  const uintptr_t each = static_cast<uintptr_t> (support::rounds (20000, 1250000));
  AVQueue queue;
  std::atomic<uintptr_t> taken = 0;
  std::atomic<uintptr_t> sum = 0;
  std::atomic<unsigned> out_of_order = 0;
  std::vector<std::thread> threads;
  for (uintptr_t p = 0; p != producers; ++p) {
    threads.emplace_back ([&queue, each, p] {
      for (uintptr_t i = 1; i <= each; ++i)
        queue.push (pointer (i * producers + p));
    });
    threads.emplace_back ([&] {
      uintptr_t last[producers] = {};
      while (taken != producers * each) {
        const uintptr_t value = number (queue.pop ());
        if (value == 0) {
          std::this_thread::yield ();
          continue;
        }
        uintptr_t &before = last[value % producers];
        out_of_order += before >= value / producers;
        before = value / producers;
        sum += value / producers;
        ++taken;
      }
    });
  }
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (out_of_order, 0u);
  EXPECT_EQ (sum, producers * (each * (each + 1) / 2));
  EXPECT_EQ (queue.length (), 0u);
}

} // namespace
