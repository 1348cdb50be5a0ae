#include "api/connection_registry.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace {

TEST (UniqueNumbers, FollowEachOther) {
  const uint32_t first = next_unique_number ();
  EXPECT_NE (first, 0u);
  EXPECT_EQ (next_unique_number (), first + 1);
  EXPECT_EQ (next_unique_number (), first + 2);
}

TEST (UniqueNumbers, PassOverZero) {
  atomic_unsigned counter (0xFFFFFFFE);
  EXPECT_EQ (draw_number (counter), 0xFFFFFFFFu);
  EXPECT_EQ (draw_number (counter), 1u);
}

TEST (UniqueNumbers, AreNeverDrawnTwice) {
  atomic_unsigned counter (0xFFFFFFFF - 1000);
  std::vector<uint32_t> drawn[4];
  std::vector<std::thread> threads;
  for (auto &of_thread : drawn)
    threads.emplace_back ([&counter, &of_thread] {
      for (int i = 0; i < 1000; ++i)
        of_thread.push_back (draw_number (counter));
    });
  for (std::thread &thread : threads)
    thread.join ();
  std::set<uint32_t> all;
  for (const auto &of_thread : drawn)
    all.insert (of_thread.begin (), of_thread.end ());
  EXPECT_EQ (all.size (), 4000u);
  EXPECT_EQ (all.count (0), 0u);
}

TEST (ConnectionRegistry, FindsWhatWasInsertedUntilItIsRemoved) {
  ConnectionRegistry registry;
  const auto object = ARef<OrvaConnObject>::create ();
  const uint32_t number = registry.insert (object);
  const uint32_t other = registry.insert (ARef<OrvaConnObject>::create ());
  EXPECT_NE (number, other);
  EXPECT_TRUE (registry.lookup (number) == object);
  EXPECT_FALSE (registry.lookup (other) == object);

  registry.remove (number);
  EXPECT_TRUE (registry.lookup (number).is_null ());
  EXPECT_FALSE (registry.lookup (other).is_null ());
  registry.remove (number);
  EXPECT_EQ (object.holder ()->refcount.load (), 1u) << "the registry holds no reference any more";
}

TEST (ConnectionRegistry, FindRecordsOnlyFailure) {
  ConnectionRegistry registry;
  const auto object = ARef<OrvaConnObject>::create ();
  const uint32_t number = registry.insert (object);
  result_error ("before");
  ARef<OrvaConnObject> found;
  EXPECT_EQ (registry.find (number, found), 0u);
  EXPECT_TRUE (found == object);
  EXPECT_EQ (last_error_text (), "before");
  EXPECT_EQ (registry.find (number + 1, found), 3u);
  EXPECT_TRUE (found.is_null ());
  EXPECT_EQ (last_error_text (), "Invalid handle");
}

TEST (ConnectionRegistry, LookupRecordsNothing) {
  ConnectionRegistry registry;
  result_error ("before");
  EXPECT_TRUE (registry.lookup (1).is_null ());
  EXPECT_EQ (last_error_text (), "before");
}

TEST (ConnectionRegistry, IsTheSameForTheWholeProcess) {
  EXPECT_EQ (&ConnectionRegistry::instance (), &ConnectionRegistry::instance ());
}

} // namespace
