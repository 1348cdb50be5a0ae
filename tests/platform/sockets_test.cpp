#include "base/bsem.h"
#include "platform/clocks.h"
#include "platform/sockets.h"
#include "support/loopback.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using platform::Ready;
using platform::SocketHandle;

constexpr uint32_t test_address = 0x7F150701; // 127.21.7.1
constexpr unsigned long_wait = 20000;

// A connection between the code under test and a far end.
struct Link {
  explicit Link (bool small_buffers = false) {
    loopback::Handle listener = loopback::listen_on (test_address, 0, 5);
    if (small_buffers)
      loopback::set_small_buffers (listener);
    near_end = platform::socket_open ();
    EXPECT_NE (near_end, platform::no_socket);
    EXPECT_TRUE (platform::socket_connect (near_end, test_address, loopback::port_of (listener), wake_up));
    far_end = loopback::accept_one (listener);
    loopback::close (listener);
  }
  ~Link () {
    platform::socket_close (near_end);
    if (far_end != -1)
      loopback::close (far_end);
  }
  std::string receive () {
    char bytes[100];
    int64_t n = platform::socket_receive (near_end, bytes, sizeof bytes);
    return n < 0 ? "error" : std::string (bytes, static_cast<size_t> (n));
  }
  bool has_ended () {
    char byte;
    return platform::socket_receive (near_end, &byte, 1) <= 0;
  }
  platform::WakeUp wake_up;
  SocketHandle near_end;
  loopback::Handle far_end;
};

std::string numbered_bytes (size_t length) {
  std::string bytes (length, 0);
  for (size_t i = 0; i < length; ++i)
    bytes[i] = static_cast<char> (i * 31 >> 3);
  return bytes;
}

// Runs work on a thread of its own and shows whether it has ended.
class Aside {
public:
  template <class Work>
  explicit Aside (Work work)
      : thread_ ([this, work] {
          work ();
          ended_.post ();
        }) {}
  ~Aside () { thread_.join (); }
  bool ended_within (unsigned milliseconds) { return ended_.wait (milliseconds); }

private:
  bsem ended_{false};
  std::thread thread_;
};

// A listener whose queue is full: the system answers no further attempt.
struct FullListener {
  FullListener () : listener (loopback::listen_on (test_address + 1, 0, 0)) {
    for (int i = 0; i < 8; ++i)
      waiting.push_back (loopback::begin_connect (test_address + 1, port ()));
  }
  ~FullListener () {
    for (loopback::Handle h : waiting)
      loopback::close (h);
    loopback::close (listener);
  }
  uint16_t port () const { return loopback::port_of (listener); }
  loopback::Handle listener;
  std::vector<loopback::Handle> waiting;
};

} // namespace

TEST (Sockets, MayBeStartedOften) {
  EXPECT_TRUE (platform::sockets_start ());
  EXPECT_TRUE (platform::sockets_start ());
}

TEST (Sockets, CarryBytesBothWays) {
  Link link;
  EXPECT_EQ (platform::socket_send (link.near_end, "hello", 5), 5);
  char bytes[10];
  ASSERT_EQ (loopback::receive_some (link.far_end, bytes, sizeof bytes), 5);
  EXPECT_EQ (std::string (bytes, 5), "hello");
  EXPECT_TRUE (loopback::send_all (link.far_end, "world", 5));
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::readable);
  EXPECT_EQ (link.receive (), "world");
}

TEST (Sockets, AreBlockingAfterTheConnect) {
  Link link;
  std::string got;
  Aside reader ([&] { got = link.receive (); });
  EXPECT_FALSE (reader.ended_within (30));
  EXPECT_TRUE (loopback::send_all (link.far_end, "late", 4));
  EXPECT_TRUE (reader.ended_within (long_wait));
  EXPECT_EQ (got, "late");
}

TEST (Sockets, NoDelayMayBeAskedFor) {
  Link link;
  platform::socket_set_no_delay (link.near_end);
  platform::socket_set_no_delay (platform::no_socket);
  EXPECT_EQ (platform::socket_send (link.near_end, "x", 1), 1);
}

TEST (Sockets, ARefusedConnectFails) {
  loopback::Handle listener = loopback::listen_on (test_address, 0, 1);
  uint16_t port = loopback::port_of (listener);
  loopback::close (listener);
  platform::WakeUp wake_up;
  SocketHandle socket = platform::socket_open ();
  EXPECT_FALSE (platform::socket_connect (socket, test_address, port, wake_up));
  platform::socket_close (socket);
}

TEST (Sockets, BadHandlesFail) {
  platform::WakeUp wake_up;
  char byte = 0;
  EXPECT_FALSE (platform::socket_connect (platform::no_socket, test_address, 1, wake_up));
  EXPECT_EQ (platform::socket_wait_readable (platform::no_socket, long_wait, wake_up), Ready::failed);
  EXPECT_LT (platform::socket_receive (platform::no_socket, &byte, 1), 0);
  EXPECT_EQ (platform::socket_send (platform::no_socket, &byte, 1), -1);
  platform::socket_shutdown (platform::no_socket);
  platform::socket_close (platform::no_socket);
}

TEST (Sockets, AWakeUpEndsAHangingConnect) {
  FullListener server;
  platform::WakeUp wake_up;
  SocketHandle socket = platform::socket_open ();
  std::atomic<bool> connected{true};
  {
    Aside attempt (
        [&] { connected = platform::socket_connect (socket, test_address + 1, server.port (), wake_up); });
    EXPECT_FALSE (attempt.ended_within (150)) << "the attempt was to hang";
    wake_up.set ();
    EXPECT_TRUE (attempt.ended_within (long_wait));
  }
  EXPECT_FALSE (connected);
  platform::socket_close (socket);
}

TEST (Sockets, AWaitEndsWithItsTime) {
  Link link;
  int64_t start = platform::steady_milliseconds ();
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, 60, link.wake_up), Ready::timed_out);
  EXPECT_GE (platform::steady_milliseconds () - start, 59);
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, 0, link.wake_up), Ready::timed_out);
}

TEST (Sockets, AWakeUpEndsAWait) {
  Link link;
  std::atomic<Ready> result{Ready::failed};
  Aside waiter ([&] { result = platform::socket_wait_readable (link.near_end, 60000, link.wake_up); });
  EXPECT_FALSE (waiter.ended_within (50));
  link.wake_up.set ();
  EXPECT_TRUE (waiter.ended_within (long_wait));
  EXPECT_EQ (result, Ready::woken);
}

TEST (Sockets, AWakeUpStaysAndComesFirst) {
  Link link;
  EXPECT_FALSE (link.wake_up.is_set ());
  EXPECT_TRUE (loopback::send_all (link.far_end, "x", 1));
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::readable);
  link.wake_up.set ();
  link.wake_up.set ();
  EXPECT_TRUE (link.wake_up.is_set ());
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::woken);
  SocketHandle another = platform::socket_open ();
  EXPECT_FALSE (platform::socket_connect (another, test_address, 1, link.wake_up));
  platform::socket_close (another);
}

TEST (Sockets, AnOrderlyCloseReadsAsZero) {
  Link link;
  loopback::close (link.far_end);
  link.far_end = -1;
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::readable);
  EXPECT_EQ (link.receive (), "");
}

TEST (Sockets, AResetReadsAsTheEnd) {
  Link link;
  loopback::reset (link.far_end);
  link.far_end = -1;
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::readable);
  EXPECT_TRUE (link.has_ended ());
}

TEST (Sockets, SendTakesAllBytes) {
  Link link (true);
  std::string sent = numbered_bytes (3000000);
  std::string got;
  {
    Aside reader ([&] {
      char bytes[70000];
      while (got.size () < sent.size ()) {
        int64_t n = loopback::receive_some (link.far_end, bytes, sizeof bytes);
        if (n <= 0)
          break;
        got.append (bytes, static_cast<size_t> (n));
      }
    });
    EXPECT_EQ (platform::socket_send (link.near_end, sent.data (), sent.size ()), 3000000);
  }
  EXPECT_TRUE (got == sent);
  EXPECT_EQ (platform::socket_send (link.near_end, sent.data (), 0), 0);
}

TEST (Sockets, ALostLinkFailsTheSend) {
  Link link;
  loopback::reset (link.far_end);
  link.far_end = -1;
  EXPECT_EQ (platform::socket_wait_readable (link.near_end, long_wait, link.wake_up), Ready::readable);
  EXPECT_TRUE (link.has_ended ());
  EXPECT_EQ (platform::socket_send (link.near_end, "x", 1), -1);
}

TEST (Sockets, AShutdownEndsABlockedSend) {
  Link link (true);
  std::string bytes (64 << 20, 'x');
  std::atomic<int64_t> result{0};
  Aside sender ([&] { result = platform::socket_send (link.near_end, bytes.data (), bytes.size ()); });
  EXPECT_FALSE (sender.ended_within (100)) << "nobody reads: the send was to wait";
  platform::socket_shutdown (link.near_end);
  EXPECT_TRUE (sender.ended_within (long_wait));
  EXPECT_EQ (result, -1);
  EXPECT_EQ (platform::socket_send (link.near_end, "x", 1), -1);
}
