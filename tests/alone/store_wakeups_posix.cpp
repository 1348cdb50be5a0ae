// When a store wakes the threads that wait for changes. A program of its own, because it replaces the call
// that wakes them with a counter.

#include "api/stores/kv_store.h"

#include <gtest/gtest.h>
#include <pthread.h>

static unsigned wakeups = 0;

extern "C" int pthread_cond_broadcast (pthread_cond_t *) noexcept {
  ++wakeups;
  return 0;
}

namespace {

unsigned taken () {
  const unsigned count = wakeups;
  wakeups = 0;
  return count;
}

TEST (StoreWakeups, ComeWithAKeyThatDidNotWaitYet) {
  const auto connection = ARef<OrvaConnObject>::create ();
  KVStore store (connection, u"CUES", u"", ORVA_STORE_READ);
  taken ();
  const auto set = [&] (const char *value) {
    store.on_change ("", {{.Key = "k", .Value = value}});
    return taken ();
  };
  const auto erase = [&] (const char *key) {
    store.on_remove ("", {key});
    return taken ();
  };
  EXPECT_EQ (set ("1"), 1u);
  EXPECT_EQ (set ("1"), 0u) << "the same again";
  EXPECT_EQ (set ("2"), 0u) << "it has its place";
  EXPECT_EQ (erase ("k"), 0u);
  EXPECT_EQ (erase ("k"), 0u);
  EXPECT_EQ (set ("2"), 0u);
  EXPECT_EQ (erase ("l"), 1u);
  EXPECT_EQ (erase (""), 0u);
  store.on_change ("", {{.Key = "m", .Value = "1"}, {.Key = "n", .Value = "1"}});
  EXPECT_EQ (taken (), 1u) << "one for a report";
  store.close ();
}

} // namespace
