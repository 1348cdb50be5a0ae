// When connections are attempted, and what is asked of their sockets. A program of its own, because it
// replaces system calls.
#include "engine/test_client.h"
#include "support/own_address.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// What was asked for sockets that go to `watched`; the fake server's own are of no interest.
std::mutex lock;
uint32_t watched = 0;
std::vector<Clock::time_point> attempts;
std::vector<int> watched_sockets;
struct Option {
  int level, name, value;
  bool operator== (const Option &) const = default;
};
std::vector<Option> options;
uint16_t port = 0; // of the latest attempt
struct Wait {
  Clock::time_point begin;
  int milliseconds;
};
std::vector<Wait> waits; // for something to read
bool next_wait_fails = false;

void watch (uint32_t address) {
  const std::lock_guard hold (lock);
  watched = address;
  attempts.clear ();
  watched_sockets.clear ();
  options.clear ();
  waits.clear ();
}

std::vector<Clock::time_point> seen_attempts () {
  const std::lock_guard hold (lock);
  return attempts;
}

template <class Function>
Function *next_of (const char *name) {
  return reinterpret_cast<Function *> (dlsym (RTLD_NEXT, name));
}

} // namespace

extern "C" int connect (int descriptor, const sockaddr *to, socklen_t length) {
  static auto *const next = next_of<int (int, const sockaddr *, socklen_t)> ("connect");
  {
    const std::lock_guard hold (lock);
    const auto *ipv4 = reinterpret_cast<const sockaddr_in *> (to);
    if (to->sa_family == AF_INET && ntohl (ipv4->sin_addr.s_addr) == watched) {
      attempts.push_back (Clock::now ());
      port = ntohs (ipv4->sin_port);
      watched_sockets.push_back (descriptor);
    }
  }
  return next (descriptor, to, length);
}

extern "C" int setsockopt (int descriptor, int level, int name, const void *value,
                           socklen_t length) noexcept {
  static auto *const next = next_of<int (int, int, int, const void *, socklen_t)> ("setsockopt");
  {
    const std::lock_guard hold (lock);
    if (std::find (watched_sockets.begin (), watched_sockets.end (), descriptor) != watched_sockets.end ())
      options.push_back ({level, name, length == sizeof (int) ? *static_cast<const int *> (value) : -1});
  }
  return next (descriptor, level, name, value, length);
}

extern "C" int poll (pollfd *polled, nfds_t count, int milliseconds) {
  static auto *const next = next_of<int (pollfd *, nfds_t, int)> ("poll");
  if (count != 0 && polled->events == POLLIN) {
    const std::lock_guard hold (lock);
    if (!watched_sockets.empty () && watched_sockets.back () == polled->fd) {
      waits.push_back ({Clock::now (), milliseconds});
      if (std::exchange (next_wait_fails, false)) {
        errno = EINVAL;
        return -1;
      }
    }
  }
  return next (polled, count, milliseconds);
}

namespace {

using support::FakeServer;
using support::wait_until;

// From each time to the next.
std::vector<Clock::duration> gaps (const std::vector<Clock::time_point> &times) {
  std::vector<Clock::duration> all;
  for (size_t i = 1; i < times.size (); ++i)
    all.push_back (times[i] - times[i - 1]);
  return all;
}

Clock::duration shortest (const std::vector<Clock::duration> &all, size_t from) {
  return *std::min_element (all.begin () + static_cast<ptrdiff_t> (from), all.end ());
}

// The clock of the pause and the one here begin at slightly different instructions.
constexpr auto pause_at_least = 98ms;
// A busy machine lengthens some pauses, but not all for ever.
constexpr auto pause_at_best = 150ms;

TEST (ConnectAttempts, ComeAHundredMillisecondsAfterEachRefusalWithoutEnd) {
  const support::OwnAddress nobody;
  watch (nobody.value ());
  Notes notes;
  TestClient client (notes, nobody.value ());
  const auto start = Clock::now ();
  client.start_thread (-1);
  EXPECT_TRUE (wait_until ([] {
    const auto all = gaps (seen_attempts ());
    return all.size () >= 16 && shortest (all, 8) < pause_at_best;
  })) << "the pause grows";
  client.stop_and_join ();
  const auto times = seen_attempts ();
  EXPECT_GE (times.front () - start, pause_at_least) << "the first comes after a pause too";
  const auto all = gaps (times);
  EXPECT_GE (shortest (all, 0), pause_at_least);
  EXPECT_FALSE (client.is_connected ());
  EXPECT_EQ (notes.count (), 0u);
}

TEST (ConnectAttempts, ComeAHundredMillisecondsAfterEachLossWithoutEnd) {
  FakeServer server;
  watch (server.address ());
  std::vector<Clock::time_point> losses;
  Notes notes;
  TestClient client (notes, server.address ());
  client.when_disconnected = [&] { losses.push_back (Clock::now ()); };
  client.start_thread (-1);
  std::vector<Clock::duration> pauses;
  size_t rounds = 0;
  while (rounds < 8 || (rounds < 60 && shortest (pauses, 4) >= pause_at_best)) {
    const size_t round = ++rounds;
    ASSERT_TRUE (client.wait_noted ("connected", round));
    ASSERT_TRUE (server.wait_for_connections (round));
    round % 2 == 0 ? server.drop () : server.reset ();
    ASSERT_TRUE (client.wait_noted ("connected", round + 1));
    pauses.push_back (seen_attempts ().at (round) - losses.at (round - 1));
  }
  client.stop_and_join ();
  EXPECT_EQ (seen_attempts ().size (), rounds + 1) << "one attempt for each link";
  EXPECT_EQ (losses.size (), rounds);
  EXPECT_GE (shortest (pauses, 0), pause_at_least);
  EXPECT_LT (shortest (pauses, 4), pause_at_best);
}

TEST (ConnectAttempts, GoToTheServersPortOnThisMachineWhenNoAddressIsGiven) {
  watch (0x7F000001);
  struct Plain : QUILL3::Client {
    ~Plain () override { stop_and_join (); }
  } client;
  client.start_thread (-1);
  ASSERT_TRUE (wait_until ([] { return !seen_attempts ().empty (); }));
  const std::lock_guard hold (lock);
  EXPECT_EQ (port, 8913);
}

// ---- What is asked of a link, and what happens to it

class ALink : public testing::Test {
protected:
  void SetUp () override {
    watch (server.address ());
    client.start_thread (-1);
    ASSERT_TRUE (client.wait_noted ("connected"));
  }

  FakeServer server;
  Notes notes;
  TestClient client{notes, server.address ()};
};

TEST_F (ALink, SendsAtOnceAndBlocksAndIsNotChangedOtherwise) {
  server.answer_any ("<ok />");
  client.stop ({.Channel = 0}, notes.ok (), notes.error ());
  ASSERT_TRUE (client.wait_noted ("ok"));
  {
    const std::lock_guard hold (lock);
    EXPECT_TRUE (options == std::vector<Option> ({{IPPROTO_TCP, TCP_NODELAY, 1}})) << options.size ();
  }
  const int descriptor = static_cast<int> (client.last_socket);
  int no_delay = 0;
  socklen_t length = sizeof no_delay;
  ASSERT_EQ (getsockopt (descriptor, IPPROTO_TCP, TCP_NODELAY, &no_delay, &length), 0);
  EXPECT_NE (no_delay, 0);
  EXPECT_EQ (fcntl (descriptor, F_GETFL) & O_NONBLOCK, 0);
  EXPECT_EQ (fcntl (descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F (ALink, ThatTheSystemCannotWaitForIsLost) {
  client.stop ({.Channel = 0}, notes.ok (), notes.error ());
  ASSERT_TRUE (server.wait_for_commands (1));
  {
    const std::lock_guard hold (lock);
    next_wait_fails = true;
  }
  ASSERT_TRUE (client.wait_noted ("connected", 2));
  EXPECT_THAT (notes.lines (), testing::ElementsAre ("connected", "error Failing all outstanding commands 0",
                                                     "disconnected", "connected"));
}

// A wait may end a little early and be followed by a look without one.
TEST_F (ALink, ThatIsSilentIsLookedAtOnceASecond) {
  std::vector<Wait> seen, whole;
  ASSERT_TRUE (wait_until ([&] {
    const std::lock_guard hold (lock);
    seen = waits;
    whole.clear ();
    std::copy_if (seen.begin (), seen.end (), std::back_inserter (whole),
                  [] (const Wait &wait) { return wait.milliseconds != 0; });
    return whole.size () >= 4;
  }));
  EXPECT_GE (whole[3].begin - whole[0].begin, 2900ms);
  for (const Wait &wait : whole)
    EXPECT_TRUE (wait.milliseconds > 0 && wait.milliseconds <= 1000) << wait.milliseconds;
  EXPECT_LE (seen.size (), 2 * whole.size ());
}

} // namespace
