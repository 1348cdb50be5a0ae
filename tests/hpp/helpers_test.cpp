// Helper threads, which make calls that cannot be interrupted. Each holds the Helpers object until it ends.

#include "hpp/scripted.h"

#include <atomic>
#include <future>
#include <memory>
#include <thread>

namespace {

using orva::detail::Helpers;
using support::wait_until;

TEST (Helpers, KeepOneIdleThreadForTheNextJob) {
  const auto helpers = std::make_shared<Helpers> ();
  std::promise<std::thread::id> first, second;
  ASSERT_TRUE (helpers->run ([&] { first.set_value (std::this_thread::get_id ()); }));
  ASSERT_TRUE (wait_until ([&] { return helpers->busy () == 0; }));
  ASSERT_TRUE (helpers->run ([&] { second.set_value (std::this_thread::get_id ()); }));
  EXPECT_EQ (first.get_future ().get (), second.get_future ().get ());
  helpers->stop ();
}

TEST (Helpers, RunJobsSideBySide) {
  const auto helpers = std::make_shared<Helpers> ();
  std::promise<void> release;
  const std::shared_future<void> released = release.get_future ().share ();
  std::atomic<int> begun{0};
  for (int i = 0; i != 3; ++i)
    ASSERT_TRUE (helpers->run ([&begun, released] {
      ++begun;
      released.wait ();
    }));
  EXPECT_TRUE (wait_until ([&] { return begun == 3; }));
  EXPECT_EQ (helpers->busy (), 3u);
  release.set_value ();
  EXPECT_TRUE (wait_until ([&] { return helpers->busy () == 0; }));
  helpers->stop ();
}

TEST (Helpers, AreGoneOnceStopped) {
  auto helpers = std::make_shared<Helpers> ();
  const std::weak_ptr<Helpers> left = helpers;
  for (int i = 0; i != 3; ++i)
    ASSERT_TRUE (helpers->run ([] {}));
  ASSERT_TRUE (wait_until ([&] { return helpers->busy () == 0; }));
  helpers->stop ();
  helpers.reset ();
  EXPECT_TRUE (left.expired ());
}

TEST (Helpers, AreNotWaitedForWhileTheyWork) {
  auto helpers = std::make_shared<Helpers> ();
  const std::weak_ptr<Helpers> left = helpers;
  std::promise<void> release;
  ASSERT_TRUE (helpers->run ([released = release.get_future ().share ()] { released.wait (); }));
  helpers->stop ();
  EXPECT_EQ (helpers->busy (), 1u);
  helpers.reset ();
  release.set_value ();
  EXPECT_TRUE (wait_until ([&] { return left.expired (); }));
}

TEST (Helpers, StillRunAJobAfterTheStop) {
  auto helpers = std::make_shared<Helpers> ();
  const std::weak_ptr<Helpers> left = helpers;
  helpers->stop ();
  std::promise<void> ran;
  ASSERT_TRUE (helpers->run ([&] { ran.set_value (); }));
  ran.get_future ().wait ();
  helpers.reset ();
  EXPECT_TRUE (wait_until ([&] { return left.expired (); }));
}

} // namespace
