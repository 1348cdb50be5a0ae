#include "support/loopback.h"

#include <cstdio>
#include <cstdlib>
#include <errno.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int fd (loopback::Handle handle) {
  return static_cast<int> (handle);
}

int must (int result, const char *what) {
  if (result >= 0)
    return result;
  std::perror (what);
  std::abort ();
}

sockaddr_in ipv4 (uint32_t address, uint16_t port) {
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons (port);
  a.sin_addr.s_addr = htonl (address);
  return a;
}

} // namespace

loopback::Handle loopback::listen_on (uint32_t address, uint16_t port, int backlog) {
  int s = must (socket (AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  int on = 1;
  must (setsockopt (s, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on), "setsockopt");
  sockaddr_in a = ipv4 (address, port);
  must (bind (s, reinterpret_cast<const sockaddr *> (&a), sizeof a), "bind");
  must (listen (s, backlog), "listen");
  return s;
}

uint16_t loopback::port_of (Handle listener) {
  sockaddr_in a{};
  socklen_t length = sizeof a;
  must (getsockname (fd (listener), reinterpret_cast<sockaddr *> (&a), &length), "getsockname");
  return ntohs (a.sin_port);
}

loopback::Handle loopback::accept_one (Handle listener) {
  int s = -1;
  do
    s = accept (fd (listener), nullptr, nullptr);
  while (s < 0 && errno == EINTR);
  return must (s, "accept");
}

loopback::Handle loopback::begin_connect (uint32_t address, uint16_t port) {
  int s = must (socket (AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0), "socket");
  sockaddr_in a = ipv4 (address, port);
  (void)connect (s, reinterpret_cast<const sockaddr *> (&a), sizeof a);
  return s;
}

void loopback::set_small_buffers (Handle socket) {
  int size = 4096;
  must (setsockopt (fd (socket), SOL_SOCKET, SO_RCVBUF, &size, sizeof size), "setsockopt");
}

bool loopback::send_all (Handle socket, const void *data, size_t length) {
  auto *bytes = static_cast<const char *> (data);
  while (length != 0) {
    ssize_t n = send (fd (socket), bytes, length, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR)
      continue;
    if (n <= 0)
      return false;
    bytes += n;
    length -= static_cast<size_t> (n);
  }
  return true;
}

int64_t loopback::receive_some (Handle socket, void *into, size_t capacity) {
  ssize_t n = 0;
  do
    n = recv (fd (socket), into, capacity, 0);
  while (n < 0 && errno == EINTR);
  return n;
}

void loopback::reset (Handle socket) {
  linger at_once{1, 0};
  must (setsockopt (fd (socket), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once), "setsockopt");
  close (socket);
}

void loopback::close (Handle socket) {
  must (::close (fd (socket)), "close");
}
