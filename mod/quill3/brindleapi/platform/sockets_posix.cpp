#include "platform/socket_steps.h"

#include <algorithm>
#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using platform::Event;
using platform::Ready;
using platform::SocketHandle;
using platform::WakeUp;

int descriptor_of (SocketHandle handle) {
  return static_cast<int> (handle);
}

int poll_time (int64_t milliseconds) {
  return milliseconds == platform::no_end ? -1 : static_cast<int> (std::min<int64_t> (milliseconds, INT_MAX));
}

} // namespace

bool platform::set_blocking (SocketHandle socket, bool blocking) noexcept {
  int flags = fcntl (descriptor_of (socket), F_GETFL, 0);
  if (flags < 0)
    return false;
  flags = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
  return fcntl (descriptor_of (socket), F_SETFL, flags) == 0;
}

bool platform::begin_connect (SocketHandle socket, uint32_t address, uint16_t port) noexcept {
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons (port);
  to.sin_addr.s_addr = htonl (address);
  return connect (descriptor_of (socket), reinterpret_cast<const sockaddr *> (&to), sizeof to) == 0 ||
         errno == EINPROGRESS || errno == EINTR;
}

bool platform::has_no_error (SocketHandle socket) noexcept {
  int error = 0;
  socklen_t length = sizeof error;
  return getsockopt (descriptor_of (socket), SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
}

// poll ignores a negative descriptor. A host may have closed the descriptor of the wake-up, which is not its
// own. The wait then goes on without it.
Ready platform::wait_once (SocketHandle socket, Event event, int64_t milliseconds,
                           const WakeUp &wake_up) noexcept {
  const short wanted = event == Event::connected ? POLLOUT : POLLIN;
  const int bell = descriptor_of (wake_up.descriptor ());
  const int64_t unannounced = std::min (milliseconds, look_every);
  pollfd both[2] = {{descriptor_of (socket), wanted, 0}, {bell, POLLIN, 0}};
  int ready = poll (both, 2, poll_time (bell < 0 ? unannounced : milliseconds));
  if (ready > 0 && (both[1].revents & POLLNVAL) != 0)
    ready = poll (both, 1, poll_time (unannounced));
  if (ready < 0)
    return errno == EINTR ? Ready::timed_out : Ready::failed;
  if (ready == 0 || both[0].revents == 0)
    return Ready::timed_out;
  return (both[0].revents & POLLNVAL) != 0 ? Ready::failed : Ready::readable;
}

WakeUp::WakeUp () noexcept : descriptor_ (eventfd (0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WakeUp::set () noexcept {
  set_.store (true, std::memory_order_release);
  if (descriptor_ != no_socket)
    (void)eventfd_write (descriptor_of (descriptor_), 1);
}

bool platform::sockets_start () noexcept {
  return true;
}

SocketHandle platform::socket_open () noexcept {
  return ::socket (AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP);
}

void platform::socket_set_no_delay (SocketHandle socket) noexcept {
  int on = 1;
  (void)setsockopt (descriptor_of (socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

int64_t platform::socket_receive (SocketHandle socket, void *into, size_t capacity) noexcept {
  ssize_t got = 0;
  do
    got = recv (descriptor_of (socket), into, capacity, 0);
  while (got < 0 && errno == EINTR);
  return got;
}

int64_t platform::socket_send (SocketHandle socket, const void *data, size_t length) noexcept {
  auto *bytes = static_cast<const char *> (data);
  size_t sent = 0;
  while (sent < length) {
    ssize_t n = send (descriptor_of (socket), bytes + sent, length - sent, MSG_NOSIGNAL);
    if (n > 0)
      sent += static_cast<size_t> (n);
    else if (n == 0 || errno != EINTR)
      return -1;
  }
  return static_cast<int64_t> (length);
}

void platform::socket_shutdown (SocketHandle socket) noexcept {
  (void)shutdown (descriptor_of (socket), SHUT_RDWR);
}

void platform::socket_close (SocketHandle socket) noexcept {
  if (socket != no_socket)
    (void)close (descriptor_of (socket));
}
