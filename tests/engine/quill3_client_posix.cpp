// A connection on Linux in a host with signals and many descriptors, and that it frees all it has used.

#include "base/amethod.h"
#include "engine/test_client.h"
#include "engine/waiter.h"
#include "support/process_counts.h"
#include "support/soak.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace QUILL3;
using namespace std::chrono_literals;
using support::FakeServer;

std::atomic<int> interruptions{0};

void note_interruption (int) {
  ++interruptions;
}

// Signals into all caller threads, a thousand in a second, while they send documents that do not fit the
// system's buffers at once.
TEST (ConnectionUnderSignals, AnswersEachCommand) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = &note_interruption; // without SA_RESTART
  sigaction (SIGUSR1, &action, &before);
  FakeServer server;
  server.answer_any ("<ok />");
  Notes notes;
  TestClient client (notes, server.address ());
  client.start_thread (-1);
  ASSERT_TRUE (client.wait_connected ());
  constexpr size_t senders = 4;
  const size_t rounds = static_cast<size_t> (support::rounds (20, 400));
  const AString large = AString::from_latin1 (std::string (200000, 'x'));
  std::atomic<size_t> ended{0}, answered{0};
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (size_t i = 0; i != senders; ++i)
    threads.emplace_back ([&] {
      for (size_t round = 0; round != rounds; ++round) {
        Waiter waiter;
        client.delete_clip ({.ClipID = large}, AMethod::bind (&waiter, &Waiter::ok),
                            AMethod::bind (&waiter, &Waiter::failed));
        waiter.done.acquire ();
        answered += static_cast<size_t> (waiter.answers);
      }
      ++ended;
      while (!stop) // stays, so that it can be signalled
        std::this_thread::sleep_for (1ms);
    });
  while (ended != senders) {
    for (std::thread &thread : threads)
      pthread_kill (thread.native_handle (), SIGUSR1);
    std::this_thread::sleep_for (1ms);
  }
  stop = true;
  for (std::thread &thread : threads)
    thread.join ();
  sigaction (SIGUSR1, &before, nullptr);
  EXPECT_EQ (answered, senders * rounds);
  EXPECT_GT (interruptions, 0);
  EXPECT_EQ (server.accepted (), 1u);
}

// What a host has set up for its signals is its own, whatever the library goes through.
TEST (ConnectionAndSignals, LeaveTheHostsDispositionsAlone) {
  const auto dispositions = [] {
    std::vector<void (*) (int)> all;
    for (int number = 1; number != SIGRTMAX + 1; ++number) {
      struct sigaction action {};
      all.push_back (sigaction (number, nullptr, &action) == 0 ? action.sa_handler : SIG_ERR);
    }
    return all;
  };
  struct sigaction own {};
  struct sigaction earlier {};
  own.sa_handler = &note_interruption;
  sigaction (SIGPIPE, &own, &earlier);
  const auto before = dispositions ();
  sigset_t mask_before, mask_after;
  pthread_sigmask (SIG_SETMASK, nullptr, &mask_before);
  const int interruptions_before = interruptions;
  {
    FakeServer server;
    server.answer_any ("<ok />");
    Notes notes;
    TestClient client (notes, server.address ());
    std::atomic<bool> lost{false};
    client.when_disconnected = [&] { lost = true; };
    client.start_thread (-1);
    ASSERT_TRUE (client.wait_noted ("connected"));
    client.stop ({.Channel = 0}, notes.ok (), notes.error ());
    ASSERT_TRUE (client.wait_noted ("ok"));
    EXPECT_EQ (dispositions (), before);
    // Sends on a link that the server has aborted, until one fails.
    server.reset ();
    while (!lost)
      client.stop ({.Channel = 0}, {}, notes.error ());
    ASSERT_TRUE (client.wait_noted ("connected", 2));
  }
  EXPECT_EQ (dispositions (), before);
  pthread_sigmask (SIG_SETMASK, nullptr, &mask_after);
  for (int number = 1; number != SIGRTMAX + 1; ++number)
    EXPECT_EQ (sigismember (&mask_before, number), sigismember (&mask_after, number)) << number;
  EXPECT_EQ (interruptions, interruptions_before) << "a lost link raises no signal";
  sigaction (SIGPIPE, &earlier, nullptr);
}

// Opens what is needed for the next descriptor to be beyond what a set of select can hold.
class ManyDescriptors {
public:
  ManyDescriptors () {
    getrlimit (RLIMIT_NOFILE, &before_);
    rlimit more = before_;
    more.rlim_cur = std::min<rlim_t> (before_.rlim_max, 4096);
    setrlimit (RLIMIT_NOFILE, &more);
    while (open_.empty () || (open_.back () >= 0 && open_.back () < 1100))
      open_.push_back (open ("/dev/null", O_RDONLY | O_CLOEXEC));
  }
  ManyDescriptors (const ManyDescriptors &) = delete;
  ~ManyDescriptors () {
    for (int descriptor : open_)
      close (descriptor);
    setrlimit (RLIMIT_NOFILE, &before_);
  }
  bool enough () const { return open_.back () >= 1100; }

private:
  rlimit before_;
  std::vector<int> open_;
};

TEST (ConnectionAmongManyDescriptors, Works) {
  FakeServer server;
  server.answer_any ("<ok />");
  ManyDescriptors many;
  if (!many.enough ())
    GTEST_SKIP () << "this system allows a process fewer descriptors";
  Notes notes;
  TestClient client (notes, server.address ());
  client.start_thread (-1);
  ASSERT_TRUE (client.wait_connected ());
  client.stop ({.Channel = 0}, notes.ok (), notes.error ());
  ASSERT_TRUE (client.wait_noted ("ok"));
  client.stop_and_join ();
}

// An attempt without a socket is one that fails.
TEST (ConnectionWithoutADescriptor, ComesUpWhenThereIsOne) {
  FakeServer server;
  Notes notes;
  TestClient client (notes, server.address ());
  rlimit before{};
  getrlimit (RLIMIT_NOFILE, &before);
  rlimit none = before;
  none.rlim_cur = 0;
  setrlimit (RLIMIT_NOFILE, &none);
  client.start_thread (-1);
  const bool came_up = support::wait_until ([&] { return client.is_connected (); }, 350ms);
  setrlimit (RLIMIT_NOFILE, &before);
  EXPECT_FALSE (came_up);
  EXPECT_TRUE (client.wait_noted ("connected"));
}

TEST (ConnectionDescriptors, AreGivenBack) {
  FakeServer server;
  FakeServer refusing (FakeServer::Start::refusing);
  const size_t before = support::open_descriptors ();
  for (int i = 0; i != 5; ++i) {
    Notes notes;
    TestClient client (notes, server.address ());
    TestClient vain (notes, refusing.address ());
    client.start_thread (-1);
    vain.start_thread (-1);
    ASSERT_TRUE (client.wait_noted ("connected"));
    server.drop_all ();
    ASSERT_TRUE (client.wait_noted ("connected", 2));
  }
  ASSERT_TRUE (server.wait_until_left ());
  EXPECT_TRUE (support::wait_until ([&] { return support::open_descriptors () <= before; }));
}

} // namespace
