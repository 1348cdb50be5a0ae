#pragma once

#include "platform/sockets.h"

/// The steps that differ between the systems, for sockets.cpp alone.
namespace platform {

/// What a wait is for: bytes to read, or the end of a connection attempt.
enum class Event { readable, connected };

/// A wait of this many milliseconds has no end.
inline constexpr int64_t no_end = INT64_MAX;
/// Milliseconds after which a wait looks at its wake-up again when no descriptor announces it.
inline constexpr int64_t look_every = 50;

/// Makes a socket blocking or not. @return false when the system refuses.
bool set_blocking (SocketHandle socket, bool blocking) noexcept;
/// Begins to connect a socket that does not block. @return false when the attempt has failed already.
bool begin_connect (SocketHandle socket, uint32_t address, uint16_t port) noexcept;
/// Whether the system has noted no error of the socket.
bool has_no_error (SocketHandle socket) noexcept;
/// Waits once for the event, an error of the socket or the wake-up, at most @p milliseconds (`no_end`:
/// without limit). It may return earlier.
/// @return `readable` for the event and for an error, `timed_out` when neither was seen, or `failed`.
Ready wait_once (SocketHandle socket, Event event, int64_t milliseconds, const WakeUp &wake_up) noexcept;

} // namespace platform
