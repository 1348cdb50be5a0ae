#include "anchors.h"

#include "sockets.h"

#include <cstring>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace figures {

std::string stop_document (unsigned number) {
  return "<cmd>\r\n<xid>" + std::to_string (number) +
         "</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>";
}

std::string play_document (unsigned number) {
  return "<cmd>\r\n<xid>" + std::to_string (number) +
         "</xid>\r\n<play>\r\n<Channel>A</Channel>\r\n</play>\r\n</cmd>";
}

std::string clip_document (unsigned number) {
  return "<cmd>\r\n<xid>" + std::to_string (number) +
         "</xid>\r\n<get_clip_info>\r\n<ClipID>NEWS0123</ClipID>\r\n</get_clip_info>\r\n</cmd>";
}

Handoff::Handoff (uint32_t address) : socket_ (connect_to (address)) {
  sem_init (&answered_, 0, 0);
  reader_ = std::thread ([this] { receive (); });
}

Handoff::~Handoff () {
  shutdown (socket_, SHUT_RDWR);
  reader_.join ();
  sem_destroy (&answered_);
  close (socket_);
}

void Handoff::call (std::string_view document) {
  {
    const std::lock_guard hold (send_lock_);
    send_all (socket_, document);
  }
  while (sem_wait (&answered_) != 0) {
  }
}

void Handoff::send_many (unsigned count) {
  for (unsigned i = 0; i != count; ++i)
    send_all (socket_, play_document (i + 1));
  for (unsigned i = 0; i != count; ++i)
    while (sem_wait (&answered_) != 0) {
    }
}

// A reply may come in pieces; what is left of one is kept in front of the next bytes.
void Handoff::receive () {
  constexpr std::string_view closing = "</reply>";
  std::vector<char> bytes (1 << 16);
  size_t kept = 0;
  for (;;) {
    const ssize_t count = recv (socket_, bytes.data () + kept, bytes.size () - kept, 0);
    if (count <= 0)
      return;
    std::string_view received (bytes.data (), kept + static_cast<size_t> (count));
    for (size_t end; (end = received.find (closing)) != std::string_view::npos;) {
      received.remove_prefix (end + closing.size ());
      sem_post (&answered_);
    }
    kept = std::min (received.size (), closing.size ());
    std::memmove (bytes.data (), received.data () + received.size () - kept, kept);
  }
}

} // namespace figures
