#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// TCP over IPv4 for one thread that reads and any number that send. Nothing here raises a signal or ends
/// early because of one. Programs that this process starts inherit no descriptor.
namespace platform {

/// A socket of the system.
using SocketHandle = intptr_t;
inline constexpr SocketHandle no_socket = -1;

/// Ends the waits of one thread from another. It stays set, so a wake-up before the wait is not lost. Where
/// the system has no descriptor left, a wait looks at it every 50 ms instead. On Windows a wait may notice it
/// up to a second late, when the host filters datagrams to itself.
class WakeUp {
public:
  WakeUp () noexcept;
  WakeUp (const WakeUp &) = delete;
  WakeUp &operator= (const WakeUp &) = delete;
  /// Belongs behind the last wait.
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

/// How a wait ended. `readable` includes an orderly close and an error of the link. The next read returns
/// which it is.
enum class Ready { timed_out, readable, woken, failed };

/// Starts the system's socket library. The first call does so, and it is never stopped. Any thread, any
/// number of times.
/// @return whether sockets can be used.
bool sockets_start () noexcept;

/// Opens a blocking TCP socket for IPv4. @return `no_socket` when the system has none left.
SocketHandle socket_open () noexcept;

/// Connects to @p address and @p port, both in host byte order. Waits without limit, until @p wake_up is set.
/// @return true when connected; the socket is then blocking again. After false only `socket_close` may
/// follow.
bool socket_connect (SocketHandle socket, uint32_t address, uint16_t port, const WakeUp &wake_up) noexcept;

/// Makes the system send small documents at once instead of collecting them. A failure is ignored.
void socket_set_no_delay (SocketHandle socket) noexcept;

/// Waits until there is something to read, at most @p milliseconds; when both hold, the result is `woken`.
Ready socket_wait_readable (SocketHandle socket, unsigned milliseconds, const WakeUp &wake_up) noexcept;

/// Waits for the first byte and reads what has arrived. @return the number of bytes, 0 after an orderly
/// close, below 0 after an error.
int64_t socket_receive (SocketHandle socket, void *into, size_t capacity) noexcept;

/// Sends all @p length bytes and waits for room where necessary. @return @p length, or -1 when the link
/// failed or was shut down before the last byte. Any thread. Senders need a lock, or their bytes mix.
int64_t socket_send (SocketHandle socket, const void *data, size_t length) noexcept;

/// Ends both directions. Blocked senders and readers return, on any thread, and later ones fail. The handle
/// stays open.
void socket_shutdown (SocketHandle socket) noexcept;

/// Closes the handle. No thread uses it any more. `no_socket` is ignored.
void socket_close (SocketHandle socket) noexcept;

} // namespace platform
