// A system that cannot start a thread. A program of its own, because it replaces pthread_create.

#include "api/stores/kv_store.h"
#include "engine/test_client.h"
#include "support/assert_counter.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <system_error>

static int refusals = 0;

extern "C" int pthread_create (pthread_t *, const pthread_attr_t *, void *(*)(void *), void *) noexcept {
  ++refusals;
  return EAGAIN;
}

namespace {

using ::testing::ElementsAre;

TEST (NoThread, LeavesAConnectionThatFailsItsCommandsAndEnds) {
  Notes notes;
  {
    TestClient client (notes, 0x7F000001);
    client.start_thread (-1);
    EXPECT_GT (refusals, 0);
    int before = refusals;
    client.start_thread (-1); // it may be tried again
    EXPECT_GT (refusals, before);
    EXPECT_FALSE (client.is_connected ());
    client.stop ({.Channel = 0}, notes.ok (), notes.error ());
  } // does not wait for a thread that never was
  EXPECT_THAT (notes.lines (), ElementsAre ("error Failing all outstanding commands 0"));
}

// A store that was left among the watches would be found there by the next one in its place.
TEST (NoThread, LeavesNothingOfAStoreThatCannotBeOpened) {
  const AssertCounter failures;
  const auto connection = ARef<OrvaConnObject>::create ();
  alignas (KVStore) unsigned char place[sizeof (KVStore)];
  for (int attempt = 0; attempt != 2; ++attempt)
    EXPECT_THROW (new (place) KVStore (connection, u"CUES", u"", ORVA_STORE_READ_WRITE), std::system_error);
  EXPECT_THROW (new (place) KVStore (connection, u"CUES", u"", ORVA_STORE_WRITE), std::system_error);
  EXPECT_EQ (failures.count (), 0u);
  auto *const reader = new (place) KVStore (connection, u"CUES", u"", ORVA_STORE_READ); // needs no thread
  EXPECT_EQ (failures.count (), 0u);
  reader->close ();
  reader->~KVStore ();
}

} // namespace
