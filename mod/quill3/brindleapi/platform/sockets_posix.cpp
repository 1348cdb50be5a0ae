#include "platform/sockets.h"

#include "platform/clocks.h"

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

using platform::Ready;
using platform::SocketHandle;
using platform::WakeUp;

constexpr int64_t no_end = INT64_MAX;
constexpr int64_t look_every = 50;

int descriptor_of (SocketHandle handle) {
  return static_cast<int> (handle);
}

bool set_blocking (SocketHandle socket, bool blocking) {
  int flags = fcntl (descriptor_of (socket), F_GETFL, 0);
  if (flags < 0)
    return false;
  flags = blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK;
  return fcntl (descriptor_of (socket), F_SETFL, flags) == 0;
}

int poll_time (int64_t left, int bell) {
  if (bell < 0)
    left = std::min (left, look_every);
  return left == no_end ? -1 : static_cast<int> (std::min<int64_t> (left, INT_MAX));
}

// Waits until `steady_milliseconds` says `end` for one of the events, or an error, on the socket.
Ready wait_for (SocketHandle socket, short events, int64_t end, const WakeUp &wake_up) {
  int bell = descriptor_of (wake_up.descriptor ());
  for (;;) {
    if (wake_up.is_set ())
      return Ready::woken;
    int64_t left = end == no_end ? no_end : std::max<int64_t> (0, end - platform::steady_milliseconds ());
    // poll passes over a negative descriptor.
    pollfd two[2] = {{descriptor_of (socket), events, 0}, {bell, POLLIN, 0}};
    int ready = poll (two, 2, poll_time (left, bell));
    if (ready < 0 && errno != EINTR)
      return Ready::failed;
    if (wake_up.is_set ())
      return Ready::woken;
    if (ready > 0 && (two[0].revents & POLLNVAL) != 0)
      return Ready::failed;
    if (ready > 0 && (two[1].revents & POLLNVAL) != 0)
      bell = -1; // the host has closed what is not its own
    if (ready > 0 && two[0].revents != 0)
      return Ready::readable;
    if (left == 0)
      return Ready::timed_out;
  }
}

bool begin_connect (SocketHandle socket, uint32_t address, uint16_t port) {
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons (port);
  to.sin_addr.s_addr = htonl (address);
  return connect (descriptor_of (socket), reinterpret_cast<const sockaddr *> (&to), sizeof to) == 0 ||
         errno == EINPROGRESS || errno == EINTR;
}

bool has_no_error (SocketHandle socket) {
  int error = 0;
  socklen_t length = sizeof error;
  return getsockopt (descriptor_of (socket), SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
}

} // namespace

WakeUp::WakeUp () noexcept : descriptor_ (eventfd (0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeUp::~WakeUp () {
  platform::socket_close (descriptor_);
}

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

bool platform::socket_connect (SocketHandle socket, uint32_t address, uint16_t port,
                               const WakeUp &wake_up) noexcept {
  return socket != no_socket && set_blocking (socket, false) && begin_connect (socket, address, port) &&
         wait_for (socket, POLLOUT, no_end, wake_up) == Ready::readable && has_no_error (socket) &&
         set_blocking (socket, true);
}

void platform::socket_set_no_delay (SocketHandle socket) noexcept {
  int on = 1;
  (void)setsockopt (descriptor_of (socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Ready platform::socket_wait_readable (SocketHandle socket, unsigned milliseconds,
                                      const WakeUp &wake_up) noexcept {
  if (socket == no_socket)
    return Ready::failed;
  return wait_for (socket, POLLIN, steady_milliseconds () + milliseconds, wake_up);
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
