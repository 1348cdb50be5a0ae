#include "sockets.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

namespace figures {

namespace {

sockaddr_in socket_address (uint32_t address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons (8913);
  result.sin_addr.s_addr = htonl (address);
  return result;
}

} // namespace

int listen_somewhere (uint32_t &address) {
  const int s = socket (AF_INET, SOCK_STREAM, 0);
  for (address = 0x7F580001 + static_cast<uint32_t> (getpid ()) % 0xFFFF; address < 0x7F5AFFFF; ++address) {
    const sockaddr_in own = socket_address (address);
    if (bind (s, reinterpret_cast<const sockaddr *> (&own), sizeof own) == 0 && listen (s, 1000) == 0)
      return s;
  }
  give_up ("listen");
}

int connect_to (uint32_t address) {
  const int s = socket (AF_INET, SOCK_STREAM, 0);
  const sockaddr_in to = socket_address (address);
  if (connect (s, reinterpret_cast<const sockaddr *> (&to), sizeof to) != 0)
    give_up ("connect");
  const int on = 1;
  setsockopt (s, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return s;
}

bool send_all (int s, std::string_view bytes) {
  while (!bytes.empty ()) {
    const ssize_t count = send (s, bytes.data (), bytes.size (), MSG_NOSIGNAL);
    if (count <= 0)
      return false;
    bytes.remove_prefix (static_cast<size_t> (count));
  }
  return true;
}

void bind_to_processor (int processor) {
  cpu_set_t set;
  CPU_ZERO (&set);
  for (int i = 0; i != CPU_SETSIZE; ++i)
    if (processor < 0 || i == processor)
      CPU_SET (i, &set);
  sched_setaffinity (0, sizeof set, &set);
}

void give_up (const char *what) {
  perror (what);
  exit (1);
}

} // namespace figures
