#include "support/socket.h"

#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support::net {

namespace {

using Native = int;
using AddressLength = socklen_t;
using IoLength = size_t;
constexpr Native invalid_native = -1;
constexpr int send_flags = MSG_NOSIGNAL;
constexpr int sending_direction = SHUT_WR;

void start_sockets () {}

Native new_socket (int type) {
  return socket (AF_INET, type | SOCK_CLOEXEC, 0);
}

Native accept_native (Native listener) {
  return accept4 (listener, nullptr, nullptr, SOCK_CLOEXEC);
}

void close_native (Native s) {
  close (s);
}

void set_non_blocking (Native s) {
  fcntl (s, F_SETFL, fcntl (s, F_GETFL) | O_NONBLOCK);
}

bool last_error_is_would_block () {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

void outlive_old_connections (Native s) {
  const int on = 1;
  setsockopt (s, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

int poll_native (pollfd *polled, size_t count, int milliseconds) {
  return poll (polled, count, milliseconds);
}

uint32_t process_number () {
  return static_cast<uint32_t> (getpid ());
}

} // namespace

bool reset_comes_alone () {
  return true;
}

} // namespace support::net

#include "support/socket_shared.inc"
