#pragma once

#include <cstddef>
#include <cstdint>

/// The far end of a connection in tests of single sockets: as support::net, but every call waits until it is
/// done, and a failure to get a socket at all ends the test program. Addresses and ports are in host byte
/// order.
namespace loopback {

using Handle = intptr_t;

/// Listens on @p address. @param port 0 takes a free one. @param backlog how many connections may wait for
/// `accept`.
Handle listen_on (uint32_t address, uint16_t port, int backlog);
/// The port that a listener got.
uint16_t port_of (Handle listener);
/// Waits for a connection.
Handle accept_one (Handle listener);
/// Begins to connect and does not wait for the outcome.
Handle begin_connect (uint32_t address, uint16_t port);
/// Makes the system hold few unread bytes for this socket. Before it is connected or, for those to come, on a
/// listener.
void set_small_buffers (Handle socket);
/// Sends all bytes. @return whether the link took them.
bool send_all (Handle socket, const void *data, size_t length);
/// Reads what is there, waiting for the first byte. @return 0 or less at the end.
int64_t receive_some (Handle socket, void *into, size_t capacity);
/// Ends with a reset instead of an orderly close.
void reset (Handle socket);
void close (Handle socket);

} // namespace loopback
