#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// IPv4 sockets for the tests: a thin layer over the operating system's calls, the same on Linux and Windows.
/// Addresses and ports are in host byte order. Nothing here is shared with the library under test.
namespace support::net {

using Handle = intptr_t;
inline constexpr Handle no_handle = -1;

/// What `wait_ready` looks for and what it found.
struct Watch {
  Handle handle = no_handle;
  bool want_read = false;
  bool want_write = false;
  bool can_read = false;  ///< also true when the peer is gone; the next receive shows it
  bool can_write = false; ///< also true when the peer is gone
};

/// Result of `receive_some` and `send_some` beside a count of bytes.
inline constexpr int would_block = -1;
inline constexpr int broken = -2;

/// Makes a bell: one thread waits for it, and any thread can ring it. no_handle when the system refuses.
Handle open_bell ();

/// Makes a bell readable. Any thread.
void ring (Handle bell);

/// Makes a bell unreadable again.
void silence (Handle bell);

/// A listening, non-blocking stream socket; no_handle when somebody else listens there.
Handle listen_on (uint32_t address, uint16_t port, int backlog);

/// The port of a socket.
uint16_t port_of (Handle handle);

/// The next connection that waits at a listener, non-blocking and without delay; no_handle when there is
/// none.
Handle accept_one (Handle listener);

/// Connects and waits for the outcome; the socket is a blocking one. no_handle when refused.
Handle connect_to (uint32_t address, uint16_t port);

/// Begins to connect and does not wait for the outcome. no_handle only when no socket can be had.
Handle begin_connect (uint32_t address, uint16_t port);

/// Bytes received, 0 at the orderly end, would_block or broken.
int receive_some (Handle handle, char *to, size_t room);

/// Bytes sent, would_block or broken. Never raises a signal.
int send_some (Handle handle, const char *from, size_t count);

/// Lets the peer see an orderly end, or with reset an aborted connection.
void close_handle (Handle handle, bool reset = false);

/// False where an aborted connection may look like an orderly end to its peer, because the system ends it
/// first.
bool reset_comes_alone ();

/// Ends the sending direction; the peer sees the orderly end and can still send.
void end_sending (Handle handle);

/// Asks for a small receive buffer, so that a sender soon has to wait.
void shrink_receive_buffer (Handle handle, int bytes);

/// Waits until one of the sockets is ready or the time is over (milliseconds; negative: for ever).
void wait_ready (std::vector<Watch> &watches, int milliseconds);

/// A number that is likely to differ between processes and between calls.
uint32_t unlikely_number ();

} // namespace support::net
