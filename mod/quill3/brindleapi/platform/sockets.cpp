#include "platform/sockets.h"

#include "platform/clocks.h"
#include "platform/socket_steps.h"

#include <algorithm>

namespace platform {

namespace {

// Waits until `steady_milliseconds` returns `end`.
Ready wait_until (int64_t end, SocketHandle socket, Event event, const WakeUp &wake_up) noexcept {
  for (;;) {
    if (wake_up.is_set ())
      return Ready::woken;
    int64_t left = end == no_end ? no_end : std::max<int64_t> (0, end - steady_milliseconds ());
    Ready ready = wait_once (socket, event, left, wake_up);
    if (wake_up.is_set ())
      return Ready::woken;
    if (ready != Ready::timed_out || left == 0)
      return ready;
  }
}

} // namespace

WakeUp::~WakeUp () {
  socket_close (descriptor_);
}

bool socket_connect (SocketHandle socket, uint32_t address, uint16_t port, const WakeUp &wake_up) noexcept {
  return socket != no_socket && set_blocking (socket, false) && begin_connect (socket, address, port) &&
         wait_until (no_end, socket, Event::connected, wake_up) == Ready::readable && has_no_error (socket) &&
         set_blocking (socket, true);
}

Ready socket_wait_readable (SocketHandle socket, unsigned milliseconds, const WakeUp &wake_up) noexcept {
  if (socket == no_socket)
    return Ready::failed;
  return wait_until (steady_milliseconds () + milliseconds, socket, Event::readable, wake_up);
}

} // namespace platform
