#include "base/atomic_unsigned.h"
#include "support/assert_counter.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <thread>
#include <vector>

namespace {

volatile bool opaque_true = true;

// Counted up by an initialiser that runs before their own constructors could.
extern atomic_unsigned constant_flag;
extern atomic_unsigned computed_flag;
const unsigned early_constant = (++constant_flag, ++constant_flag);
const unsigned early_computed = (computed_flag += 5);
atomic_unsigned constant_flag (true);
atomic_unsigned computed_flag (static_cast<bool> (opaque_true));

// Fills zeroed static storage, builds a word over it and returns its value.
template <unsigned Tag>
unsigned built_over (unsigned content, bool keep) {
  alignas (4) static unsigned char storage[sizeof (atomic_unsigned)];
  std::memcpy (storage, &content, sizeof content);
  return (new (storage) atomic_unsigned (keep))->load ();
}

template <class Work>
void on_threads (unsigned threads, Work work) {
  std::vector<std::thread> all;
  for (unsigned i = 0; i < threads; ++i)
    all.emplace_back ([=] { work (i); });
  for (std::thread &t : all)
    t.join ();
}

} // namespace

TEST (AtomicUnsigned, Constructors) {
  EXPECT_EQ (atomic_unsigned ().load (), 0u);
  EXPECT_EQ (atomic_unsigned (7).load (), 7u);
  EXPECT_EQ (atomic_unsigned (0xFFFFFFFFu).load (), 0xFFFFFFFFu);
  EXPECT_EQ (atomic_unsigned (false).load (), 0u);
  EXPECT_EQ (sizeof (atomic_unsigned), 4u);
  EXPECT_EQ (alignof (atomic_unsigned), 4u);
}

TEST (AtomicUnsigned, FlagConstructorKeepsWhatTheStorageHeld) {
  EXPECT_EQ (built_over<0> (77, opaque_true), 77u);
  EXPECT_EQ (built_over<1> (77, true), 77u);
  EXPECT_EQ (built_over<2> (77, false), 0u);
}

TEST (AtomicUnsigned, FlagConstructorKeepsWhatEarlyInitialisersCounted) {
  EXPECT_EQ (early_constant, 2u);
  EXPECT_EQ (constant_flag.load (), 2u);
  EXPECT_EQ (early_computed, 5u);
  EXPECT_EQ (computed_flag.load (), 5u);
}

TEST (AtomicUnsigned, IncrementsAndSums) {
  atomic_unsigned a (5);
  EXPECT_EQ (++a, 6u);
  EXPECT_EQ (a++, 6u);
  EXPECT_EQ (a.load (), 7u);
  EXPECT_EQ (--a, 6u);
  EXPECT_EQ (a--, 6u);
  EXPECT_EQ (a.load (), 5u);
  EXPECT_EQ (a += 10, 15u);
  EXPECT_EQ (a -= 4, 11u);
  a.store (0);
  EXPECT_EQ (a--, 0u);
  EXPECT_EQ (a.load (), 0xFFFFFFFFu);
  EXPECT_EQ (a += 2, 1u);
}

TEST (AtomicUnsigned, CompareAndSet) {
  atomic_unsigned a (3);
  EXPECT_FALSE (a.compare_and_set (4, 9));
  EXPECT_EQ (a.load (), 3u);
  EXPECT_TRUE (a.compare_and_set (3, 9));
  EXPECT_EQ (a.load (), 9u);
}

TEST (AtomicUnsigned, SubtractWithFloor) {
  atomic_unsigned a (10);
  EXPECT_FALSE (a.subtract_with_floor (4, 7));
  EXPECT_EQ (a.load (), 10u);
  EXPECT_TRUE (a.subtract_with_floor (3, 7));
  EXPECT_EQ (a.load (), 7u);
  EXPECT_FALSE (a.subtract_with_floor (8, 0));
  EXPECT_EQ (a.load (), 7u);
  EXPECT_TRUE (a.subtract_with_floor (7, 0));
  EXPECT_EQ (a.load (), 0u);
}

TEST (AtomicUnsigned, AddWithCeiling) {
  atomic_unsigned a (10);
  EXPECT_FALSE (a.add_with_ceiling (5, 14));
  EXPECT_EQ (a.load (), 10u);
  EXPECT_TRUE (a.add_with_ceiling (4, 14));
  EXPECT_EQ (a.load (), 14u);
  EXPECT_FALSE (a.add_with_ceiling (0, 13));
  EXPECT_FALSE (a.add_with_ceiling (0xFFFFFFFFu, 0xFFFFFFFFu));
  EXPECT_EQ (a.load (), 14u);
}

TEST (AtomicUnsigned, RaiseAndLower) {
  atomic_unsigned a (10);
  EXPECT_FALSE (a.raise_to (10));
  EXPECT_FALSE (a.raise_to (9));
  EXPECT_TRUE (a.raise_to (11));
  EXPECT_EQ (a.load (), 11u);
  EXPECT_FALSE (a.lower_to (11));
  EXPECT_FALSE (a.lower_to (12));
  EXPECT_TRUE (a.lower_to (2));
  EXPECT_EQ (a.load (), 2u);
}

TEST (AtomicUnsigned, ArithmeticAndBits) {
  atomic_unsigned a (6);
  EXPECT_TRUE (a.multiply_by (7));
  EXPECT_EQ (a.load (), 42u);
  EXPECT_TRUE (a.divide_by (5));
  EXPECT_EQ (a.load (), 8u);
  EXPECT_TRUE (a.or_with (3));
  EXPECT_EQ (a.load (), 11u);
  EXPECT_TRUE (a.and_with (0xE));
  EXPECT_EQ (a.load (), 10u);
  EXPECT_TRUE (a.xor_with (0xF));
  EXPECT_EQ (a.load (), 5u);
  EXPECT_TRUE (a.and_not_with (4));
  EXPECT_EQ (a.load (), 1u);
}

TEST (AtomicUnsigned, BitNumbersAreTakenModulo32) {
  atomic_unsigned a;
  EXPECT_TRUE (a.set_bit (33));
  EXPECT_EQ (a.load (), 2u);
  EXPECT_TRUE (a.test_bit (1));
  EXPECT_TRUE (a.test_bit (65));
  EXPECT_FALSE (a.test_bit (32));
  EXPECT_TRUE (a.set_bit (31));
  EXPECT_EQ (a.load (), 0x80000002u);
  EXPECT_TRUE (a.clear_bit (33));
  EXPECT_EQ (a.load (), 0x80000000u);
}

TEST (AtomicUnsigned, ManyThreadsLoseNothing) {
  constexpr unsigned each = 5000;
  atomic_unsigned counted, capped, highest, product (1);
  atomic_unsigned granted;
  on_threads (4, [&] (unsigned thread) {
    for (unsigned i = 0; i < each; ++i) {
      ++counted;
      if (capped.add_with_ceiling (3, 10000))
        ++granted;
      highest.raise_to (thread * each + i);
      product.multiply_by (3);
    }
  });
  EXPECT_EQ (counted.load (), 4 * each);
  EXPECT_EQ (granted.load (), 3333u);
  EXPECT_EQ (capped.load (), 9999u);
  EXPECT_EQ (highest.load (), 4 * each - 1);
  unsigned expected = 1;
  for (unsigned i = 0; i < 4 * each; ++i)
    expected *= 3;
  EXPECT_EQ (product.load (), expected);
}

TEST (AtomicImpl, RefusesMisalignedWords) {
  AssertCounter failures;
  alignas (8) unsigned char bytes[16]{};
  EXPECT_FALSE (atomic_compare_and_set_32 (reinterpret_cast<uint32_t *> (bytes + 1), 0, 1));
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_FALSE (atomic_compare_and_set_64 (reinterpret_cast<uint64_t *> (bytes + 4), 0, 1));
  EXPECT_EQ (failures.take (), 1u);
  for (unsigned char byte : bytes)
    EXPECT_EQ (byte, 0);
}

TEST (AtomicImpl, CompareAndSet64) {
  uint64_t word = 0x1122334455667788u;
  EXPECT_FALSE (atomic_compare_and_set_64 (&word, 0x55667788u, 1));
  EXPECT_EQ (atomic_load_64 (&word), 0x1122334455667788u);
  EXPECT_TRUE (atomic_compare_and_set_64 (&word, 0x1122334455667788u, 0xFFFFFFFF00000000u));
  EXPECT_EQ (atomic_load_64 (&word), 0xFFFFFFFF00000000u);
}

TEST (AtomicImpl, CompareAndSet64HasOneWinner) {
  constexpr size_t words = 500;
  std::array<uint64_t, words> all{};
  atomic_unsigned wins;
  on_threads (4, [&] (unsigned thread) {
    for (uint64_t &word : all) {
      if (atomic_compare_and_set_64 (&word, 0, thread + 1))
        ++wins;
      EXPECT_NE (atomic_load_64 (&word), 0u);
    }
  });
  EXPECT_EQ (wins.load (), words);
}
