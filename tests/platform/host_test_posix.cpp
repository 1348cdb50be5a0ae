// What a host process on Linux may expect of the platform layer: its signals, descriptors and limits.
#include "base/bsem.h"
#include "platform/clocks.h"
#include "platform/kernel_objects.h"
#include "platform/sanitizers.h"
#include "platform/sockets.h"
#include "platform/threads.h"
#include "support/loopback.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <pthread.h>
#include <signal.h>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr uint32_t test_address = 0x7F150801; // 127.21.8.1
constexpr unsigned long_wait = 20000;

struct Pair {
  Pair () {
    loopback::Handle listener = loopback::listen_on (test_address, 0, 5);
    loopback::set_small_buffers (listener);
    near_end = platform::socket_open ();
    EXPECT_TRUE (platform::socket_connect (near_end, test_address, loopback::port_of (listener), wake_up));
    far_end = loopback::accept_one (listener);
    loopback::close (listener);
  }
  ~Pair () {
    platform::socket_close (near_end);
    loopback::close (far_end);
  }
  platform::WakeUp wake_up;
  platform::SocketHandle near_end;
  loopback::Handle far_end;
};

std::atomic<unsigned> signals_taken{0};
void take_signal (int) {
  ++signals_taken;
}

// Sends a signal to a thread once a millisecond, without SA_RESTART, until it goes.
class Interrupter {
public:
  explicit Interrupter (pthread_t target)
      : thread_ ([this, target] {
          do {
            pthread_kill (target, SIGUSR1);
            platform::sleep_milliseconds (1);
          } while (!stop_);
        }) {}
  ~Interrupter () {
    stop_ = true;
    thread_.join ();
  }

private:
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

class WithHandler {
public:
  WithHandler () {
    struct sigaction action {};
    action.sa_handler = take_signal;
    sigaction (SIGUSR1, &action, &before_);
    signals_taken = 0;
  }
  ~WithHandler () { sigaction (SIGUSR1, &before_, nullptr); }

private:
  struct sigaction before_ {};
};

bool is_closed_on_exec (platform::SocketHandle handle) {
  return (fcntl (static_cast<int> (handle), F_GETFD) & FD_CLOEXEC) != 0;
}

struct Inside {
  bsem done{false};
  sigset_t mask{};
  int nice_before = 0;
  int nice_after = 0;
  size_t stack = 0;
};

int own_nice () {
  return getpriority (PRIO_PROCESS, static_cast<id_t> (gettid ()));
}

void look_inside (void *given) {
  auto &seen = *static_cast<Inside *> (given);
  pthread_sigmask (SIG_SETMASK, nullptr, &seen.mask);
  pthread_attr_t attributes;
  pthread_getattr_np (pthread_self (), &attributes);
  pthread_attr_getstacksize (&attributes, &seen.stack);
  pthread_attr_destroy (&attributes);
  seen.nice_before = own_nice ();
  platform::thread_set_priority (-1);
  seen.nice_after = own_nice ();
  seen.done.post ();
}

} // namespace

TEST (Host, ThreadsTakeNoSignals) {
  sigset_t own_before, own_after;
  pthread_sigmask (SIG_SETMASK, nullptr, &own_before);
  Inside seen;
  ASSERT_TRUE (platform::thread_start (look_inside, &seen));
  ASSERT_TRUE (seen.done.wait (long_wait));
  for (int number :
       {SIGHUP, SIGINT, SIGQUIT, SIGUSR1, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGCHLD, SIGIO, SIGRTMIN + 1})
    EXPECT_EQ (sigismember (&seen.mask, number), 1) << number;
  pthread_sigmask (SIG_SETMASK, nullptr, &own_after);
  for (int number = 1; number < 32; ++number)
    EXPECT_EQ (sigismember (&own_before, number), sigismember (&own_after, number)) << number;
}

TEST (Host, ThreadsHaveASmallStackAndALowerPriority) {
  Inside seen;
  ASSERT_TRUE (platform::thread_start (look_inside, &seen));
  ASSERT_TRUE (seen.done.wait (long_wait));
  EXPECT_EQ (seen.nice_after, std::min (seen.nice_before + 1, 19));
  EXPECT_EQ (own_nice (), seen.nice_before) << "the other threads stay as they are";
  constexpr bool sanitized = platform::under_address_sanitizer || platform::under_thread_sanitizer;
  EXPECT_EQ (seen.stack, sanitized ? size_t{1} << 20 : 65536u);
}

TEST (Host, DescriptorsAreClosedOnExec) {
  Pair pair;
  EXPECT_TRUE (is_closed_on_exec (pair.near_end));
  EXPECT_TRUE (is_closed_on_exec (pair.wake_up.descriptor ()));
}

TEST (Host, DescriptorsAreGivenBack) {
  int before = dup (0);
  close (before);
  { Pair pair; }
  int after = dup (0);
  close (after);
  EXPECT_EQ (before, after);
}

TEST (Host, ALostLinkRaisesNoSignal) {
  Pair pair;
  platform::socket_shutdown (pair.near_end);
  EXPECT_EQ (platform::socket_send (pair.near_end, "x", 1), -1) << "and this process still lives";
}

TEST (Host, HighDescriptorsWork) {
  rlimit limit{};
  getrlimit (RLIMIT_NOFILE, &limit);
  if (limit.rlim_max < 3000)
    GTEST_SKIP () << "this system allows too few descriptors";
  rlimit raised = limit;
  raised.rlim_cur = std::max<rlim_t> (limit.rlim_cur, 3000);
  setrlimit (RLIMIT_NOFILE, &raised);
  {
    Pair pair;
    int high = fcntl (static_cast<int> (pair.near_end), F_DUPFD_CLOEXEC, 2500);
    ASSERT_GE (high, 2500);
    EXPECT_EQ (platform::socket_wait_readable (high, 0, pair.wake_up), platform::Ready::timed_out);
    EXPECT_TRUE (loopback::send_all (pair.far_end, "x", 1));
    EXPECT_EQ (platform::socket_wait_readable (high, long_wait, pair.wake_up), platform::Ready::readable);
    close (high);
  }
  setrlimit (RLIMIT_NOFILE, &limit);
}

TEST (Host, WithoutADescriptorAWakeUpStillWorks) {
  Pair pair;
  rlimit limit{};
  getrlimit (RLIMIT_NOFILE, &limit);
  rlimit none = limit;
  none.rlim_cur = 0;
  setrlimit (RLIMIT_NOFILE, &none);
  auto poor = std::make_unique<platform::WakeUp> ();
  EXPECT_EQ (platform::socket_open (), platform::no_socket);
  setrlimit (RLIMIT_NOFILE, &limit);
  EXPECT_EQ (poor->descriptor (), platform::no_socket);
  EXPECT_EQ (platform::socket_wait_readable (pair.near_end, 120, *poor), platform::Ready::timed_out);
  std::thread waker ([&] {
    platform::sleep_milliseconds (20);
    poor->set ();
  });
  EXPECT_EQ (platform::socket_wait_readable (pair.near_end, long_wait, *poor), platform::Ready::woken);
  waker.join ();
}

// A host that closes all descriptors, as some do when they become a service, closes those of a wait too.
TEST (Host, AWakeUpWhoseDescriptorWasClosedStillWorksAndDoesNotSpin) {
  Pair pair;
  platform::WakeUp robbed;
  close (static_cast<int> (robbed.descriptor ()));
  const auto processor_time = [] {
    timespec used{};
    clock_gettime (CLOCK_THREAD_CPUTIME_ID, &used);
    return used.tv_sec * 1000 + used.tv_nsec / 1000000;
  };
  const long before = processor_time ();
  EXPECT_EQ (platform::socket_wait_readable (pair.near_end, 300, robbed), platform::Ready::timed_out);
  EXPECT_LT (processor_time () - before, 100);
  std::thread waker ([&] {
    platform::sleep_milliseconds (20);
    robbed.set ();
  });
  EXPECT_EQ (platform::socket_wait_readable (pair.near_end, long_wait, robbed), platform::Ready::woken);
  waker.join ();
}

TEST (Host, SignalsShortenNoWait) {
  WithHandler handler;
  Pair pair;
  Interrupter interrupter (pthread_self ());
  int64_t start = platform::steady_milliseconds ();
  EXPECT_EQ (platform::socket_wait_readable (pair.near_end, 50, pair.wake_up), platform::Ready::timed_out);
  EXPECT_GE (platform::steady_milliseconds () - start, 49);
  start = platform::steady_milliseconds ();
  platform::sleep_milliseconds (50);
  EXPECT_GE (platform::steady_milliseconds () - start, 49);
  auto *semaphore = platform::semaphore_create (0, 1);
  start = platform::steady_milliseconds ();
  EXPECT_EQ (platform::semaphore_wait (semaphore, 50), platform::Wait::timed_out);
  EXPECT_GE (platform::steady_milliseconds () - start, 49);
  platform::semaphore_close (semaphore);
  EXPECT_GT (signals_taken, 0u);
}

TEST (Host, SignalsCutNoTransferShort) {
  WithHandler handler;
  Pair pair;
  std::string sent (4000000, 0);
  for (size_t i = 0; i < sent.size (); ++i)
    sent[i] = static_cast<char> (i * 7 >> 4);
  std::string got;
  bool taken = false;
  {
    Interrupter interrupter (pthread_self ());
    std::thread reader ([&] {
      char bytes[3000];
      int64_t n = 0;
      while (got.size () < sent.size () &&
             (n = loopback::receive_some (pair.far_end, bytes, sizeof bytes)) > 0)
        got.append (bytes, static_cast<size_t> (n));
    });
    taken = platform::socket_send (pair.near_end, sent.data (), sent.size ()) == 4000000;
    reader.join ();
    std::thread writer ([&] {
      platform::sleep_milliseconds (20);
      loopback::send_all (pair.far_end, "answer", 6);
    });
    char bytes[10];
    EXPECT_EQ (platform::socket_receive (pair.near_end, bytes, sizeof bytes), 6);
    writer.join ();
  }
  EXPECT_TRUE (taken);
  EXPECT_TRUE (got == sent);
  EXPECT_GT (signals_taken, 0u);
}

TEST (Host, SignalsDoNotEndAConnect) {
  WithHandler handler;
  Interrupter interrupter (pthread_self ());
  for (int i = 0; i < 50; ++i) {
    Pair pair;
    EXPECT_EQ (platform::socket_send (pair.near_end, "x", 1), 1);
  }
}
