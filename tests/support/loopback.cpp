#include "support/loopback.h"

#include "support/socket.h"

#include <cstdio>
#include <cstdlib>

namespace net = support::net;

namespace {

constexpr int small_buffer = 4096;

loopback::Handle must (loopback::Handle handle, const char *what) {
  if (handle != net::no_handle)
    return handle;
  std::perror (what);
  std::abort ();
}

void wait_to_read (loopback::Handle handle) {
  std::vector<net::Watch> watches{{.handle = handle, .want_read = true}};
  net::wait_ready (watches, -1);
}

void wait_to_write (loopback::Handle handle) {
  std::vector<net::Watch> watches{{.handle = handle, .want_write = true}};
  net::wait_ready (watches, -1);
}

} // namespace

loopback::Handle loopback::listen_on (uint32_t address, uint16_t port, int backlog) {
  return must (net::listen_on (address, port, backlog), "listen");
}

uint16_t loopback::port_of (Handle listener) {
  return net::port_of (listener);
}

loopback::Handle loopback::accept_one (Handle listener) {
  Handle accepted = net::no_handle;
  while ((accepted = net::accept_one (listener)) == net::no_handle)
    wait_to_read (listener);
  return accepted;
}

loopback::Handle loopback::begin_connect (uint32_t address, uint16_t port) {
  return must (net::begin_connect (address, port), "connect");
}

void loopback::set_small_buffers (Handle socket) {
  net::shrink_receive_buffer (socket, small_buffer);
}

bool loopback::send_all (Handle socket, const void *data, size_t length) {
  auto *bytes = static_cast<const char *> (data);
  while (length != 0) {
    const int sent = net::send_some (socket, bytes, length);
    if (sent == net::would_block) {
      wait_to_write (socket);
      continue;
    }
    if (sent <= 0)
      return false;
    bytes += sent;
    length -= static_cast<size_t> (sent);
  }
  return true;
}

int64_t loopback::receive_some (Handle socket, void *into, size_t capacity) {
  int got = 0;
  while ((got = net::receive_some (socket, static_cast<char *> (into), capacity)) == net::would_block)
    wait_to_read (socket);
  return got;
}

void loopback::reset (Handle socket) {
  net::close_handle (socket, true);
}

void loopback::close (Handle socket) {
  net::close_handle (socket);
}
