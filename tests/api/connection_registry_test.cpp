#include "api/exports/export_call.h"

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
  std::atomic<uint32_t> counter (0xFFFFFFFE);
  EXPECT_EQ (next_nonzero (counter), 0xFFFFFFFFu);
  EXPECT_EQ (next_nonzero (counter), 1u);
}

TEST (UniqueNumbers, AreNeverDrawnTwice) {
  std::atomic<uint32_t> counter (0xFFFFFFFF - 1000);
  std::vector<uint32_t> drawn[4];
  std::vector<std::thread> threads;
  for (auto &of_thread : drawn)
    threads.emplace_back ([&counter, &of_thread] {
      for (int i = 0; i < 1000; ++i)
        of_thread.push_back (next_nonzero (counter));
    });
  for (std::thread &thread : threads)
    thread.join ();
  std::set<uint32_t> all;
  for (const auto &of_thread : drawn)
    all.insert (of_thread.begin (), of_thread.end ());
  EXPECT_EQ (all.size (), 4000u);
  EXPECT_EQ (all.count (0), 0u);
}

TEST (ConnectionRegistry, FindsWhatWasOpenedUntilItIsClosed) {
  ConnectionRegistry registry;
  const auto object = Connection::create ();
  const uint32_t number = registry.open (object);
  const uint32_t other = registry.open (Connection::create ());
  EXPECT_NE (number, other);
  EXPECT_TRUE (registry.find (number) == object);
  EXPECT_FALSE (registry.find (other) == object);

  registry.close_and_hold (number);
  EXPECT_TRUE (registry.find (number).is_null ());
  EXPECT_FALSE (registry.find (other).is_null ());
  registry.close_and_hold (number);
  EXPECT_EQ (object.holder ()->refcount.load (), 1u) << "the registry holds no reference any more";
}

TEST (OnConnection, RecordsOnlyFailure) {
  const auto object = Connection::create ();
  const uint32_t number = connections ().open (object);
  Connection found;
  const auto keep = [&] (const Connection &self) {
    found = self;
    return ResultCode{ORVA_OK};
  };
  result_error ("before");
  EXPECT_EQ (on_connection (number, keep), 0u);
  EXPECT_TRUE (found == object);
  EXPECT_EQ (last_error_text (), "before");
  found = nullptr;
  EXPECT_EQ (on_connection (number + 1, keep), 3u);
  EXPECT_TRUE (found.is_null ());
  EXPECT_EQ (last_error_text (), "Invalid handle");
  connections ().close_and_hold (number);
}

TEST (OnConnection, TurnsExceptionsIntoACode) {
  const uint32_t number = connections ().open (Connection::create ());
  EXPECT_EQ (on_connection (number, [] (const Connection &) -> ResultCode { throw 1; }), 2u);
  EXPECT_EQ (last_error_text (), "Internal software error");
  EXPECT_EQ (send_command (number, [] () -> command::stop { throw 1; }), 2u);
  EXPECT_EQ (last_error_text (), "Internal software error");
  connections ().close_and_hold (number);
}

TEST (SendCommand, ConvertsItsArgumentsOnlyForAConnectionThatIsOpen) {
  const auto arguments = [] {
    ADD_FAILURE ();
    return command::stop{};
  };
  EXPECT_EQ (send_command (0, arguments), 3u);
  EXPECT_EQ (last_error_text (), "Invalid handle");
}

TEST (ConnectionRegistry, FindingRecordsNothing) {
  ConnectionRegistry registry;
  result_error ("before");
  EXPECT_TRUE (registry.find (1).is_null ());
  EXPECT_EQ (last_error_text (), "before");
}

TEST (ConnectionRegistry, IsTheSameForTheWholeProcess) {
  EXPECT_EQ (&connections (), &connections ());
}

} // namespace
