#include "support/loopback.h"

#include <cstdio>
#include <cstdlib>
#include <winsock2.h>

namespace {

SOCKET of (loopback::Handle handle) {
  return static_cast<SOCKET> (handle);
}

void must (bool ok, const char *what) {
  if (ok)
    return;
  std::fprintf (stderr, "%s: error %d\n", what, WSAGetLastError ());
  std::abort ();
}

sockaddr_in ipv4 (uint32_t address, uint16_t port) {
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons (port);
  a.sin_addr.s_addr = htonl (address);
  return a;
}

SOCKET open () {
  static const int started = [] {
    WSADATA data;
    return WSAStartup (0x0202, &data);
  }();
  must (started == 0, "WSAStartup");
  SOCKET s = ::socket (AF_INET, SOCK_STREAM, IPPROTO_TCP);
  must (s != INVALID_SOCKET, "socket");
  return s;
}

template <class T>
void set_option (loopback::Handle socket, int name, T value) {
  must (setsockopt (of (socket), SOL_SOCKET, name, reinterpret_cast<const char *> (&value), sizeof value) ==
            0,
        "setsockopt");
}

} // namespace

loopback::Handle loopback::listen_on (uint32_t address, uint16_t port, int backlog) {
  SOCKET s = open ();
  sockaddr_in a = ipv4 (address, port);
  must (bind (s, reinterpret_cast<const sockaddr *> (&a), sizeof a) == 0, "bind");
  must (listen (s, backlog) == 0, "listen");
  return static_cast<Handle> (s);
}

uint16_t loopback::port_of (Handle listener) {
  sockaddr_in a{};
  int length = sizeof a;
  must (getsockname (of (listener), reinterpret_cast<sockaddr *> (&a), &length) == 0, "getsockname");
  return ntohs (a.sin_port);
}

loopback::Handle loopback::accept_one (Handle listener) {
  SOCKET s = accept (of (listener), nullptr, nullptr);
  must (s != INVALID_SOCKET, "accept");
  return static_cast<Handle> (s);
}

loopback::Handle loopback::begin_connect (uint32_t address, uint16_t port) {
  SOCKET s = open ();
  u_long non_blocking = 1;
  must (ioctlsocket (s, static_cast<long> (FIONBIO), &non_blocking) == 0, "ioctlsocket");
  sockaddr_in a = ipv4 (address, port);
  (void)connect (s, reinterpret_cast<const sockaddr *> (&a), sizeof a);
  return static_cast<Handle> (s);
}

void loopback::set_small_buffers (Handle socket) {
  set_option (socket, SO_RCVBUF, 4096);
}

bool loopback::send_all (Handle socket, const void *data, size_t length) {
  auto *bytes = static_cast<const char *> (data);
  while (length != 0) {
    int n = send (of (socket), bytes, static_cast<int> (length), 0);
    if (n <= 0)
      return false;
    bytes += n;
    length -= static_cast<size_t> (n);
  }
  return true;
}

int64_t loopback::receive_some (Handle socket, void *into, size_t capacity) {
  return recv (of (socket), static_cast<char *> (into), static_cast<int> (capacity), 0);
}

void loopback::reset (Handle socket) {
  set_option (socket, SO_LINGER, linger{1, 0});
  close (socket);
}

void loopback::close (Handle socket) {
  must (closesocket (of (socket)) == 0, "closesocket");
}
