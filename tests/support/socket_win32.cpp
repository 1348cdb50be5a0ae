#include "support/socket.h"

#include <atomic>
#include <chrono>
#include <winsock2.h>
#include <ws2tcpip.h>

namespace support::net {

namespace {

using Native = SOCKET;
using AddressLength = int;
using IoLength = int;
constexpr Native invalid_native = INVALID_SOCKET;
constexpr int send_flags = 0;
constexpr int sending_direction = SD_SEND;

void start_sockets () {
  static const int started = [] {
    WSADATA data;
    return WSAStartup (0x0202, &data);
  }();
  static_cast<void> (started);
}

Native new_socket (int type) {
  return socket (AF_INET, type, 0);
}

Native accept_native (Native listener) {
  return accept (listener, nullptr, nullptr);
}

void close_native (Native s) {
  closesocket (s);
}

void set_non_blocking (Native s) {
  u_long on = 1;
  ioctlsocket (s, static_cast<long> (FIONBIO), &on);
}

bool last_error_is_would_block () {
  return WSAGetLastError () == WSAEWOULDBLOCK;
}

// Here an address is free again as soon as its listener is closed.
void outlive_old_connections (Native) {}

int poll_native (pollfd *polled, size_t count, int milliseconds) {
  return WSAPoll (polled, static_cast<ULONG> (count), milliseconds);
}

uint32_t process_number () {
  return static_cast<uint32_t> (GetCurrentProcessId ());
}

} // namespace

// Wine shuts a socket down before it closes it.
bool reset_comes_alone () {
  return false;
}

} // namespace support::net

#include "support/socket_shared.inc"
