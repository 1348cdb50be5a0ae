// Each allocation for a command and its reply fails in turn. A command that cannot be sent is taken back. A
// command that was sent ends once. Nothing leaks, and the connection carries out the next command. A program
// of its own, because it replaces operator new.

#include "base/amethod.h"
#include "base/astring_pool.h"
#include "engine/test_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

thread_local long allowed = -1; ///< allocations of this thread until one fails; below 0: none does
std::atomic<long> living{0};

bool take_permission () {
  return allowed < 0 || allowed-- != 0;
}

} // namespace

// Not inlined: next to a new, a compiler takes the call of free for a mistake.

[[gnu::noinline]] void *operator new (size_t size, const std::nothrow_t &) noexcept {
  void *p = take_permission () ? std::malloc (size != 0 ? size : 1) : nullptr;
  if (p != nullptr)
    ++living;
  return p;
}
[[gnu::noinline]] void *operator new (size_t size) {
  void *p = operator new (size, std::nothrow);
  if (p == nullptr)
    throw std::bad_alloc ();
  return p;
}
[[gnu::noinline]] void operator delete (void *p) noexcept {
  if (p != nullptr)
    --living;
  std::free (p);
}
[[gnu::noinline]] void operator delete (void *p, size_t) noexcept {
  operator delete (p);
}
[[gnu::noinline]] void operator delete (void *p, const std::nothrow_t &) noexcept {
  operator delete (p);
}

namespace {

using namespace QUILL3;
using support::FakeServer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Outcome {
  bool thrown = false;
  bool reached = false; ///< the allocation that was to fail was asked for
  AString xid;
};

// Sends with the allocation number `n` failing.
template <class Send>
Outcome send_with_failure (long n, Send send) {
  Outcome outcome;
  allowed = n;
  try {
    outcome.xid = send ();
  } catch (const std::bad_alloc &) {
    outcome.thrown = true;
  }
  outcome.reached = allowed < 0;
  allowed = -1;
  return outcome;
}

TEST (AllocationFailures, LeaveACommandUnsentAndUntold) {
  Notes notes;
  WireInHand wire;
  auto ok = notes.ok ();
  auto error = notes.error ();
  const command::cue_clip command{.Channel = 1, .ClipID = AString ("NEWS0123"), .LoopOut = 90};
  auto send = [&] { return wire.cue_clip (command, ok, error); };
  wire.reply (send (), "<ok />"); // what is made on first use is there now
  ASSERT_THAT (notes.take_lines (), ElementsAre ("ok"));
  long n = 0;
  for (;; ++n) {
    wire.take_sent ();
    const long before = living;
    Outcome outcome = send_with_failure (n, send);
    std::vector<std::string> lines = notes.take_lines ();
    if (!outcome.reached) {
      EXPECT_FALSE (outcome.thrown);
      EXPECT_EQ (wire.sent,
                 "<cmd>\r\n<xid>" + outcome.xid.to_std_string () +
                     "</xid>\r\n<cue_clip>\r\n<Channel>B</Channel>\r\n<ClipID>NEWS0123</ClipID>\r\n"
                     "<LoopOut>90</LoopOut>\r\n</cue_clip>\r\n</cmd>");
      EXPECT_EQ (wire.outstanding_count (), 1u);
      wire.reply (outcome.xid, "<ok />");
      EXPECT_THAT (notes.take_lines (), ElementsAre ("ok"));
      break;
    }
    EXPECT_TRUE (outcome.thrown) << n;
    EXPECT_THAT (lines, IsEmpty ()) << n;
    EXPECT_EQ (wire.outstanding_count (), 0u) << n;
    EXPECT_EQ (wire.sent, "") << n;
    wire.take_sent ();
    outcome.xid = AString ();
    lines = std::vector<std::string> ();
    EXPECT_EQ (living, before) << n;
  }
  EXPECT_GT (n, 3);
}

TEST (AllocationFailures, OfACommandWithoutCallbacksAreThrown) {
  WireInHand wire;
  wire.play ({.Channel = 1});
  long n = 0;
  for (;; ++n) {
    Outcome outcome = send_with_failure (n, [&] { return wire.play ({.Channel = 1}); });
    if (!outcome.reached)
      break;
    EXPECT_TRUE (outcome.thrown) << n;
  }
  EXPECT_GT (n, 3);
}

TEST (AllocationFailures, LeaveTheConnectionUsable) {
  FakeServer server;
  server.answer_any ("<ok />");
  Notes notes;
  TestClient client (notes, server.address ());
  client.start_thread (-1);
  ASSERT_TRUE (client.wait_connected ());
  auto ok = notes.ok ();
  auto error = notes.error ();
  const command::delete_clip command{.ClipID = AString::from_latin1 (std::string (5000, 'x'))};
  for (long n = 0;; ++n) {
    notes.take_lines ();
    Outcome outcome = send_with_failure (n, [&] { return client.delete_clip (command, ok, error); });
    if (!outcome.reached)
      break;
    EXPECT_TRUE (outcome.thrown) << n;
    EXPECT_THAT (notes.lines (), IsEmpty ()) << n;
  }
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.accepted (), 1u);
}

// On the connection's own thread: a failure ends the link, and the command fails.
TEST (AllocationFailures, InAReplyFailTheCommandAndTheNextLinkServes) {
  const std::string name (1000, 'S'); // longer than the blocks that the pool of texts may keep by then
  FakeServer server;
  server.on_any ([&] (const support::Command &command) {
    return "<report><clip_created><ClipID>arm</ClipID></clip_created></report>" +
           support::reply_to (command,
                              "<computername><ComputerName>" + name + "</ComputerName></computername>");
  });
  Notes notes;
  TestClient client (notes, server.address ());
  std::atomic<long> next{-1};
  std::atomic<bool> reached{false}, done{false};
  struct Ends {
    Notes &notes;
    std::atomic<bool> &reached, &done;
    void finish (const char *what, const AString &text) {
      reached = allowed < 0;
      allowed = -1; // what follows allocates, and is no part of the test
      notes.add (what + text.to_std_string ());
      done = true;
    }
    void named (AString name) { finish ("name ", name); }
    void failed (AString text, uint32_t) { finish ("error ", text); }
  } ends{notes, reached, done};
  client.when_clip = [&] (const std::string &) {
    astring_pool::free_all ();
    allowed = next;
  };
  client.start_thread (-1);
  long n = 0;
  for (;; ++n) {
    ASSERT_TRUE (client.wait_connected ());
    notes.take_lines ();
    done = false;
    next = n;
    client.get_computer_name ({}, AMethod::bind (&ends, &Ends::named), AMethod::bind (&ends, &Ends::failed));
    ASSERT_TRUE (support::wait_until ([&] { return done.load (); }));
    if (!reached)
      break;
    EXPECT_EQ (notes.count ("error Failing all outstanding commands"), 1u) << n;
    EXPECT_EQ (notes.count ("name " + name), 0u) << n;
    ASSERT_TRUE (client.wait_noted ("connected")) << n;
  }
  EXPECT_EQ (notes.count ("name " + name), 1u);
  EXPECT_GT (n, 0);
}

} // namespace
