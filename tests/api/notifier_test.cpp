#include "api/connection/notifier.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Pair = std::pair<uint32_t, uint32_t>;

Pair taken (Notifier &notifier, uint32_t timeout = 0) {
  Pair pair (77, 77);
  notifier.take (timeout, &pair.first, &pair.second);
  return pair;
}

TEST (Notifier, FirstInFirstOut) {
  Notifier notifier;
  notifier.post (7, 3);
  notifier.post (1, 0);
  notifier.post (7, 2);
  EXPECT_EQ (taken (notifier), Pair (7, 3));
  EXPECT_EQ (taken (notifier), Pair (1, 0));
  EXPECT_EQ (taken (notifier), Pair (7, 2));
  EXPECT_EQ (taken (notifier), Pair (0, 0));
}

TEST (Notifier, APairWaitsOnce) {
  Notifier notifier;
  for (int i = 0; i != 10; ++i)
    notifier.post (7, 3);
  EXPECT_EQ (taken (notifier), Pair (7, 3));
  EXPECT_EQ (taken (notifier), Pair (0, 0));
}

TEST (Notifier, APairTakenAndPostedAgainGoesToTheEnd) {
  Notifier notifier;
  notifier.post (7, 3);
  notifier.post (1, 3);
  EXPECT_EQ (taken (notifier), Pair (7, 3));
  notifier.post (7, 3);
  EXPECT_EQ (taken (notifier), Pair (1, 3));
  EXPECT_EQ (taken (notifier), Pair (7, 3));
}

TEST (Notifier, HoldsEveryPairAtOnce) {
  Notifier notifier;
  for (int round = 0; round != 2; ++round)
    for (uint32_t kind = 1; kind <= 9; ++kind)
      for (uint32_t channel = 0; channel != 8; ++channel)
        notifier.post (kind, channel);
  for (uint32_t kind = 1; kind <= 9; ++kind)
    for (uint32_t channel = 0; channel != 8; ++channel)
      ASSERT_EQ (taken (notifier), Pair (kind, channel));
  EXPECT_EQ (taken (notifier), Pair (0, 0));
}

TEST (Notifier, NullOutputs) {
  Notifier notifier;
  uint32_t value = 77;
  notifier.post (7, 3);
  notifier.take (0, nullptr, &value);
  EXPECT_EQ (value, 3u);
  notifier.post (7, 3);
  notifier.take (0, &value, nullptr);
  EXPECT_EQ (value, 7u);
  notifier.post (7, 3);
  notifier.take (0, nullptr, nullptr);
  notifier.take (0, nullptr, nullptr);
  EXPECT_EQ (taken (notifier), Pair (0, 0));
}

TEST (Notifier, WaitsForTheTimeGiven) {
  Notifier notifier;
  const auto start = std::chrono::steady_clock::now ();
  EXPECT_EQ (taken (notifier, 50), Pair (0, 0));
  EXPECT_GE (std::chrono::steady_clock::now () - start, std::chrono::milliseconds (50));
}

TEST (Notifier, APostEndsALongWait) {
  Notifier notifier;
  Pair pair;
  std::thread waiter ([&] { pair = taken (notifier, 0xFFFFFFFF); });
  notifier.post (5, 6);
  waiter.join ();
  EXPECT_EQ (pair, Pair (5, 6));
}

TEST (Notifier, EachNoticeGoesToOneThread) {
  constexpr unsigned rounds = 500;
  Notifier notifier;
  std::atomic<unsigned> got = 0;
  std::atomic<bool> done = false;
  std::vector<std::thread> waiters;
  for (int i = 0; i != 4; ++i)
    waiters.emplace_back ([&] {
      while (!done)
        got += taken (notifier, 10).first != 0;
    });
  for (unsigned i = 0; i != rounds; ++i) {
    notifier.post (1 + i % 9, i / 9 % 8);
    while (got != i + 1)
      std::this_thread::yield ();
  }
  done = true;
  for (std::thread &waiter : waiters)
    waiter.join ();
  EXPECT_EQ (got, rounds);
}

} // namespace
