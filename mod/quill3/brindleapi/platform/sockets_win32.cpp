#include "platform/socket_steps.h"

#include <algorithm>
#include <limits.h>
#include <winsock2.h>

#include <windows.h>
#include <ws2tcpip.h>

namespace {

using platform::Event;
using platform::Ready;
using platform::SocketHandle;
using platform::WakeUp;

// With a descriptor a wait still looks at its wake-up once in this many milliseconds, because a filter of the
// host may drop the datagram.
constexpr int64_t look_at_last = 1000;

SOCKET socket_of (SocketHandle handle) {
  return static_cast<SOCKET> (handle);
}

SocketHandle open (int type, int protocol) {
  if (!platform::sockets_start ())
    return platform::no_socket;
  SOCKET s =
      WSASocketW (AF_INET, type, protocol, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
  return s == INVALID_SOCKET ? platform::no_socket : static_cast<SocketHandle> (s);
}

sockaddr_in ipv4 (uint32_t address, uint16_t port) {
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons (port);
  a.sin_addr.s_addr = htonl (address);
  return a;
}

// A datagram socket that is connected to itself. A byte that it sends makes it readable, and it takes bytes
// from no other sender.
SocketHandle open_wake_socket () {
  SocketHandle handle = open (SOCK_DGRAM, IPPROTO_UDP);
  if (handle == platform::no_socket)
    return handle;
  sockaddr_in self = ipv4 (INADDR_LOOPBACK, 0);
  auto *name = reinterpret_cast<sockaddr *> (&self);
  int length = sizeof self;
  SOCKET s = socket_of (handle);
  if (bind (s, name, length) == 0 && getsockname (s, name, &length) == 0 && connect (s, name, length) == 0)
    return handle;
  platform::socket_close (handle);
  return platform::no_socket;
}

timeval timeval_of (int64_t milliseconds) {
  timeval t;
  t.tv_sec = static_cast<long> (milliseconds / 1000);
  t.tv_usec = static_cast<long> (milliseconds % 1000 * 1000);
  return t;
}

void add (SocketHandle handle, fd_set &set) {
  if (handle != platform::no_socket)
    FD_SET (socket_of (handle), &set);
}

} // namespace

bool platform::set_blocking (SocketHandle socket, bool blocking) noexcept {
  u_long non_blocking = blocking ? 0 : 1;
  return ioctlsocket (socket_of (socket), static_cast<long> (FIONBIO), &non_blocking) == 0;
}

bool platform::begin_connect (SocketHandle socket, uint32_t address, uint16_t port) noexcept {
  sockaddr_in to = ipv4 (address, port);
  return connect (socket_of (socket), reinterpret_cast<const sockaddr *> (&to), sizeof to) == 0 ||
         WSAGetLastError () == WSAEWOULDBLOCK;
}

bool platform::has_no_error (SocketHandle socket) noexcept {
  int error = 0;
  int length = sizeof error;
  return getsockopt (socket_of (socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char *> (&error), &length) ==
             0 &&
         error == 0;
}

Ready platform::wait_once (SocketHandle socket, Event event, int64_t milliseconds,
                           const WakeUp &wake_up) noexcept {
  fd_set reads, writes, errors;
  FD_ZERO (&reads);
  FD_ZERO (&writes);
  FD_ZERO (&errors);
  add (wake_up.descriptor (), reads);
  add (socket, event == Event::connected ? writes : reads);
  if (event == Event::connected)
    add (socket, errors);
  const int64_t longest = wake_up.descriptor () == no_socket ? look_every : look_at_last;
  timeval time = timeval_of (std::min (milliseconds, longest));
  if (select (0, &reads, &writes, &errors, &time) == SOCKET_ERROR)
    return Ready::failed;
  const SOCKET s = socket_of (socket);
  const bool ready = FD_ISSET (s, &reads) || FD_ISSET (s, &writes) || FD_ISSET (s, &errors);
  return ready ? Ready::readable : Ready::timed_out;
}

WakeUp::WakeUp () noexcept : descriptor_ (open_wake_socket ()) {}

void WakeUp::set () noexcept {
  set_.store (true, std::memory_order_release);
  if (descriptor_ != no_socket)
    (void)send (socket_of (descriptor_), "", 1, 0);
}

bool platform::sockets_start () noexcept {
  static const bool started = [] {
    WSADATA data;
    return WSAStartup (0x0202, &data) == 0;
  }();
  return started;
}

SocketHandle platform::socket_open () noexcept {
  return open (SOCK_STREAM, IPPROTO_TCP);
}

void platform::socket_set_no_delay (SocketHandle socket) noexcept {
  int on = 1;
  (void)setsockopt (socket_of (socket), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char *> (&on),
                    sizeof on);
}

int64_t platform::socket_receive (SocketHandle socket, void *into, size_t capacity) noexcept {
  int got = 0;
  do
    got = recv (socket_of (socket), static_cast<char *> (into),
                static_cast<int> (std::min<size_t> (capacity, INT_MAX)), 0);
  while (got == SOCKET_ERROR && WSAGetLastError () == WSAEINTR);
  return got;
}

int64_t platform::socket_send (SocketHandle socket, const void *data, size_t length) noexcept {
  auto *bytes = static_cast<const char *> (data);
  size_t sent = 0;
  while (sent < length) {
    int n = send (socket_of (socket), bytes + sent,
                  static_cast<int> (std::min<size_t> (length - sent, INT_MAX)), 0);
    if (n <= 0)
      return -1;
    sent += static_cast<size_t> (n);
  }
  return static_cast<int64_t> (length);
}

// The shutdown makes later calls fail. A call that waits already ends only when it is cancelled.
void platform::socket_shutdown (SocketHandle socket) noexcept {
  (void)shutdown (socket_of (socket), SD_BOTH);
  (void)CancelIoEx (reinterpret_cast<HANDLE> (socket), nullptr);
}

void platform::socket_close (SocketHandle socket) noexcept {
  if (socket != no_socket)
    (void)closesocket (socket_of (socket));
}
