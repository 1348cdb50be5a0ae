// A system that has no thread to give. A program of its own, because it replaces pthread_create.

#include "engine/test_client.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

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

} // namespace
