#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// TCP over IPv4 for one thread that reads and any number that send. Nothing here raises a signal, hands a
/// descriptor to a program started by this process, or is cut short by a signal.
namespace platform {

/// A socket of the system.
using SocketHandle = intptr_t;
inline constexpr SocketHandle no_socket = -1;

/// Ends the waits of one thread from another. Once set it stays set, so that a wake-up before the wait is not
/// lost. Where the system has no descriptor to give, waits look at it every 50 ms instead. On Windows a host
/// that filters datagrams to itself may keep it from a wait for a second.
class WakeUp {
public:
  WakeUp () noexcept;
  WakeUp (const WakeUp &) = delete;
  WakeUp &operator= (const WakeUp &) = delete;
  /// Nobody waits with it any more.
  ~WakeUp ();

  /// Ends the present wait and all later ones at once. Any thread, any number of times.
  void set () noexcept;
  bool is_set () const noexcept { return set_.load (std::memory_order_acquire); }
  /// The descriptor that becomes readable, `no_socket` where there is none.
  SocketHandle descriptor () const noexcept { return descriptor_; }

private:
  std::atomic<bool> set_{false};
  SocketHandle descriptor_;
};

/// How a wait ended. `readable` includes an orderly close and an error of the link, which the next read
/// tells.
enum class Ready { timed_out, readable, woken, failed };

/// Readies the system's socket library, once in a process; it is never put away again. Any thread, any number
/// of times.
/// @return whether sockets can be used.
bool sockets_start () noexcept;

/// Opens a TCP socket for IPv4, blocking. @return `no_socket` when there is none to be had.
SocketHandle socket_open () noexcept;

/// Connects to @p address and @p port (both in host byte order), waiting without limit; @p wake_up ends the
/// wait.
/// @return true when connected, the socket then blocking again. After false it is good for `socket_close`
/// only.
bool socket_connect (SocketHandle socket, uint32_t address, uint16_t port, const WakeUp &wake_up) noexcept;

/// Sends small documents at once instead of gathering them. A refusal is ignored.
void socket_set_no_delay (SocketHandle socket) noexcept;

/// Waits until there is something to read, at most @p milliseconds; a wake-up comes first where both hold.
Ready socket_wait_readable (SocketHandle socket, unsigned milliseconds, const WakeUp &wake_up) noexcept;

/// Reads what is there, waiting for the first byte. @return the number of bytes, 0 after an orderly close,
/// below 0 after an error.
int64_t socket_receive (SocketHandle socket, void *into, size_t capacity) noexcept;

/// Sends all @p length bytes, waiting for room. @return @p length, or -1 when the link failed or was shut
/// down before the last byte was taken. Any thread; the bytes of two senders mix unless they have a lock.
int64_t socket_send (SocketHandle socket, const void *data, size_t length) noexcept;

/// Ends both directions: blocked senders and readers on any thread return, later ones fail. The handle stays
/// taken.
void socket_shutdown (SocketHandle socket) noexcept;

/// Gives the handle back. Nobody uses it any more. `no_socket` is ignored.
void socket_close (SocketHandle socket) noexcept;

} // namespace platform
