// Memory runs out at each allocation of a call in turn: the call fails with a code, nothing of it is left
// behind, and the connection goes on.
#include "exports/session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <thread>

namespace {

// Allocations of this thread that still succeed while armed.
thread_local bool armed = false;
thread_local bool failed = false;
thread_local unsigned left = 0;

void *allocate (std::size_t size) noexcept {
  if (armed && left-- == 0) {
    armed = false;
    failed = true;
    return nullptr;
  }
  return std::malloc (size != 0 ? size : 1);
}

} // namespace

// Not inlined: next to a new, a compiler takes the call of free for a mistake.

[[gnu::noinline]] void *operator new (std::size_t size) {
  void *const memory = allocate (size);
  if (memory == nullptr)
    throw std::bad_alloc ();
  return memory;
}
[[gnu::noinline]] void *operator new (std::size_t size, const std::nothrow_t &) noexcept {
  return allocate (size);
}
[[gnu::noinline]] void operator delete (void *memory) noexcept {
  std::free (memory);
}
[[gnu::noinline]] void operator delete (void *memory, std::size_t) noexcept {
  std::free (memory);
}
[[gnu::noinline]] void operator delete (void *memory, const std::nothrow_t &) noexcept {
  std::free (memory);
}

namespace {

/// Makes the call with its n-th allocation failing, for n from 0 up, until it needs no more of them. After
/// each failure calls `check` with what the call gave. @return how many allocations there were to fail.
template <class Call, class Check>
unsigned fail_each_allocation (Call call, Check check) {
  for (unsigned n = 0;; ++n) {
    left = n;
    failed = false;
    armed = true;
    const uint32_t result = call ();
    armed = false;
    if (!failed)
      return n;
    SCOPED_TRACE (n);
    check (result);
  }
}

class FailingAllocations : public testing::Test {
protected:
  FailingAllocations () : connection_ (orva_connect (server_.address ())) {
    server_.answer_any ("<ok />");
    server_.answer ("get_computer_name", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
    orva_wait_until_connected (connection_);
    orva_cmd_stop1 (connection_, 0);
  }
  ~FailingAllocations () override {
    orva_close (connection_);
    // The object is gone, so no reference to it was lost.
    EXPECT_TRUE (server_.wait_until_left ());
  }

  void expect_usable () {
    orva_sync (connection_);
    EXPECT_TRUE (support::wait_until ([this] { return orva_cmd_stop1 (connection_, 0) == ORVA_OK; }));
  }

  support::FakeServer server_;
  const uint32_t connection_;
};

TEST_F (FailingAllocations, OfACommand) {
  const orva_char clip[] = {'N', 'E', 'W', 'S', 0};
  const auto call = [&] { return orva_cmd_loadclip3 (connection_, 0, clip, ORVA_REPEAT_LOOP, 5); };
  const unsigned count = fail_each_allocation (call, [&] (uint32_t code) {
    EXPECT_EQ (code, ORVA_ERROR);
    EXPECT_EQ (last_error (), "Internal software error");
    expect_usable ();
  });
  EXPECT_GE (count, 3u);
}

TEST_F (FailingAllocations, OfAnAsynchronousCommand) {
  const auto call = [&] {
    orva_synchronous (connection_, 1);
    return orva_cmd_play2 (connection_, 0, 1.0);
  };
  const unsigned count = fail_each_allocation (call, [&] (uint32_t code) {
    EXPECT_EQ (code, ORVA_ERROR);
    orva_synchronous (connection_, 0);
    expect_usable ();
  });
  EXPECT_GE (count, 3u);
}

TEST_F (FailingAllocations, OfAQuery) {
  orva_char name[8] = {0};
  const auto call = [&] { return orva_server_name (connection_, OrvaStringBuffer{name, 8}); };
  const unsigned count = fail_each_allocation (call, [&] (uint32_t code) {
    EXPECT_EQ (code, ORVA_ERROR);
    EXPECT_EQ (name[0], orva_char (0));
    expect_usable ();
  });
  EXPECT_GE (count, 3u);
  EXPECT_EQ (name[0], orva_char ('S'));
}

TEST_F (FailingAllocations, OfOpeningAConnection) {
  uint32_t opened = 0;
  const auto call = [&] { return opened = orva_connect (server_.address ()); };
  const unsigned count = fail_each_allocation (call, [&] (uint32_t number) {
    // 0, which no connection ever has; or, where only its thread could not be had, a connection that stays
    // down.
    orva_close (number);
    expect_usable ();
  });
  EXPECT_GE (count, 3u);
  EXPECT_NE (opened, 0u);
  orva_close (opened);
}

// On a thread of its own, whose first text has to be allocated too.
TEST_F (FailingAllocations, OfTakingAChangeLeaveItToBeTaken) {
  const std::string key (40, 'k');
  const std::string value (200, 'v');
  server_.on ("download_metadata", [&] (const support::Command &command) {
    return support::reply_to (command, "<metadata><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix />"
                                       "<MetadataList><Metadata><Key>" +
                                           key + "</Key><Value>" + value +
                                           "</Value></Metadata></MetadataList></metadata>") +
           support::reply_to (command, "<ok />");
  });
  const orva_char folder[] = {'C', 'U', 'E', 'S', 0};
  const orva_char no_prefix[] = {0};
  uint32_t store = 0;
  ASSERT_EQ (orva_open_kvstore (connection_, folder, no_prefix, ORVA_STORE_READ, &store), ORVA_OK);
  ASSERT_EQ (orva_kvstore_wait_scan (store, 20000), ORVA_OK);
  uint32_t type = 77;
  orva_char units[2][256];
  unsigned count = 0;
  std::thread ([&] {
    const auto call = [&] {
      return orva_kvstore_get_change (store, 0, &type, OrvaStringBuffer{units[0], 256},
                                      OrvaStringBuffer{units[1], 256});
    };
    count = fail_each_allocation (call, [&] (uint32_t code) {
      EXPECT_EQ (code, ORVA_ERROR);
      EXPECT_EQ (type, 77u);
    });
  }).join ();
  EXPECT_GT (count, 0u);
  EXPECT_EQ (type, uint32_t{ORVA_STORE_CHANGE_SET});
  EXPECT_EQ (std::basic_string<orva_char> (units[0]),
             std::basic_string<orva_char> (key.begin (), key.end ()));
  EXPECT_EQ (std::basic_string<orva_char> (units[1]),
             std::basic_string<orva_char> (value.begin (), value.end ()));
  orva_close_key_value_store (store);
}

} // namespace
