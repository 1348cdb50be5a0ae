// How long one stop command takes, there and back, beside two anchors that send the same bytes to the same
// server: a ping-pong on one thread, which is what the system's calls alone cost, and one whose reply is read
// by a second thread that wakes the first, which is what any blocking call on top of a reading thread costs.
// All of it once on one processor and once free.
#include "orva.h"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <semaphore.h>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 40; // the kinds take turns, so that a disturbance meets all of them
constexpr int calls_a_round = 500;
constexpr int warm_up = 500;

[[noreturn]] void give_up (const char *what) {
  perror (what);
  exit (1);
}

// --- the answering server

sockaddr_in socket_address (uint32_t address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons (8913);
  result.sin_addr.s_addr = htonl (address);
  return result;
}

void without_delay (int s) {
  const int on = 1;
  setsockopt (s, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool send_all (int s, std::string_view bytes) {
  return send (s, bytes.data (), bytes.size (), MSG_NOSIGNAL) == static_cast<ssize_t> (bytes.size ());
}

// Appends what comes until the text is there. False at the end of the connection.
bool receive_through (int s, std::string &received, std::string_view text) {
  char bytes[2048];
  while (received.find (text) == std::string::npos) {
    const ssize_t count = recv (s, bytes, sizeof bytes, 0);
    if (count <= 0)
      return false;
    received.append (bytes, static_cast<size_t> (count));
  }
  return true;
}

void answer_commands (int s) {
  without_delay (s);
  std::string received;
  while (receive_through (s, received, "</cmd>")) {
    const size_t begin = received.find ("<xid>"), end = received.find ("</xid>");
    send_all (s, "<reply>" + received.substr (begin, end - begin) + "</xid><ok /></reply>");
    received.clear ();
  }
}

int listen_somewhere (uint32_t &address) {
  const int s = socket (AF_INET, SOCK_STREAM, 0);
  for (address = 0x7F580001 + static_cast<uint32_t> (getpid ()) % 0xFFFF; address < 0x7F5AFFFF; ++address) {
    const sockaddr_in own = socket_address (address);
    if (bind (s, reinterpret_cast<const sockaddr *> (&own), sizeof own) == 0 && listen (s, 8) == 0)
      return s;
  }
  give_up ("listen");
}

// A process that answers every connection in a process of its own, all of them ending with this one.
uint32_t start_server () {
  uint32_t address = 0;
  const int listener = listen_somewhere (address);
  const pid_t parent = getpid ();
  if (fork () == 0) {
    prctl (PR_SET_PDEATHSIG, SIGKILL);
    if (getppid () != parent)
      _exit (0);
    for (;;) {
      const int s = accept (listener, nullptr, nullptr);
      if (s >= 0 && fork () == 0) {
        answer_commands (s);
        _exit (0);
      }
      close (s);
    }
  }
  close (listener);
  return address;
}

// --- the three kinds of call

std::string stop_document (unsigned number) {
  return "<cmd>\r\n<xid>" + std::to_string (number) +
         "</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>";
}

int connect_raw (uint32_t address) {
  const int s = socket (AF_INET, SOCK_STREAM, 0);
  const sockaddr_in to = socket_address (address);
  if (connect (s, reinterpret_cast<const sockaddr *> (&to), sizeof to) != 0)
    give_up ("connect");
  without_delay (s);
  return s;
}

class PingPong {
public:
  explicit PingPong (uint32_t address) : socket_ (connect_raw (address)) {}
  ~PingPong () { close (socket_); }
  PingPong (const PingPong &) = delete;
  PingPong &operator= (const PingPong &) = delete;

  void call () {
    send_all (socket_, stop_document (++number_));
    received_.clear ();
    if (!receive_through (socket_, received_, "</reply>"))
      give_up ("ping-pong");
  }

private:
  int socket_;
  unsigned number_ = 0;
  std::string received_;
};

class PingPongOfTwo {
public:
  explicit PingPongOfTwo (uint32_t address) : socket_ (connect_raw (address)) {
    sem_init (&answered_, 0, 0);
    reader_ = std::thread ([this] { read_replies (); });
  }

  ~PingPongOfTwo () {
    shutdown (socket_, SHUT_RDWR);
    reader_.join ();
    sem_destroy (&answered_);
    close (socket_);
  }

  PingPongOfTwo (const PingPongOfTwo &) = delete;
  PingPongOfTwo &operator= (const PingPongOfTwo &) = delete;

  void call () {
    send_all (socket_, stop_document (++number_));
    while (sem_wait (&answered_) != 0) {
    }
  }

private:
  void read_replies () {
    std::string received;
    while (receive_through (socket_, received, "</reply>")) {
      received.clear ();
      sem_post (&answered_);
    }
  }

  int socket_;
  unsigned number_ = 0;
  sem_t answered_{};
  std::thread reader_;
};

class Library {
public:
  explicit Library (uint32_t address) : connection_ (orva_connect (address)) {
    orva_wait_until_connected (connection_);
  }

  ~Library () { orva_close (connection_); }
  Library (const Library &) = delete;
  Library &operator= (const Library &) = delete;

  void call () const {
    if (orva_cmd_stop1 (connection_, 0) != ORVA_OK)
      give_up ("orva_cmd_stop1");
  }

private:
  uint32_t connection_;
};

// --- measuring

struct Kind {
  const char *name;
  std::function<void ()> call;
  std::vector<double> microseconds{};
};

void measure (Kind &kind, int calls) {
  for (int i = 0; i < calls; ++i) {
    const Clock::time_point begin = Clock::now ();
    kind.call ();
    kind.microseconds.push_back (std::chrono::duration<double, std::micro> (Clock::now () - begin).count ());
  }
}

double at (const std::vector<double> &sorted, double part) {
  return sorted[static_cast<size_t> (part * static_cast<double> (sorted.size () - 1))];
}

void print (std::vector<Kind> &kinds) {
  std::vector<double> medians;
  for (Kind &kind : kinds) {
    std::sort (kind.microseconds.begin (), kind.microseconds.end ());
    medians.push_back (at (kind.microseconds, 0.5));
    printf ("| %-34s | %7.1f | %7.1f | %7.1f | %5.2f | %5.2f |\n", kind.name, at (kind.microseconds, 0.1),
            medians.back (), at (kind.microseconds, 0.99), medians.back () / medians[0],
            medians.size () > 1 ? medians.back () / medians[1] : 1.0);
  }
}

void run_all (const char *title) {
  const uint32_t address = start_server ();
  PingPong one (address);
  PingPongOfTwo two (address);
  const Library library (address);
  std::vector<Kind> kinds{{"A: ping-pong on one thread", [&one] { one.call (); }},
                          {"B: reply read by a second thread", [&two] { two.call (); }},
                          {"orva_cmd_stop1", [&library] { library.call (); }}};
  for (Kind &kind : kinds)
    measure (kind, warm_up);
  for (Kind &kind : kinds)
    kind.microseconds.clear ();
  for (int round = 0; round < rounds; ++round)
    for (Kind &kind : kinds)
      measure (kind, calls_a_round);
  printf ("\n%s: %d calls of each kind, microseconds\n\n", title, rounds * calls_a_round);
  printf ("| %-34s |  10th %% |  median |  99th %% |  to A |  to B |\n", "");
  printf ("|---|--:|--:|--:|--:|--:|\n");
  print (kinds);
}

void pin_to_one_processor () {
  cpu_set_t allowed, one;
  sched_getaffinity (0, sizeof allowed, &allowed);
  CPU_ZERO (&one);
  for (int i = 0; i < CPU_SETSIZE && CPU_COUNT (&one) == 0; ++i)
    if (CPU_ISSET (i, &allowed))
      CPU_SET (i, &one);
  sched_setaffinity (0, sizeof one, &one);
}

// In a process of its own, so that neither run leaves threads or a server to the other.
void run_apart (const char *title, bool pinned) {
  fflush (stdout);
  const pid_t child = fork ();
  if (child == 0) {
    if (pinned)
      pin_to_one_processor ();
    run_all (title);
    fflush (stdout);
    _exit (0);
  }
  int status = 0;
  waitpid (child, &status, 0);
  if (status != 0)
    exit (1);
}

} // namespace

int main () {
  run_apart ("On one processor", true);
  run_apart ("Free", false);
  return 0;
}
