#pragma once

#include "control/journal.h"
#include "faults/faults.h"
#include "world.h"

#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// One connection, for lists of connections.
struct Connection {
  int number = 0;
  std::string address;            ///< IPv4 address of the client
  std::size_t unsent = 0;         ///< bytes that wait to be sent
  const Client *client = nullptr; ///< null for a connection of a proxy
};

/// A running server, as the control address and scenarios use it. One thread.
class SteeredServer {
public:
  virtual ~SteeredServer () = default;

  /// The IPv4 address on which it listens.
  virtual const std::string &address () const = 0;
  /// @throws Refusal when the server is a proxy, which has no state of its own
  virtual World &world () = 0;
  virtual Faults &faults () = 0;
  virtual Journal &journal () = 0;

  virtual std::vector<Connection> connections () = 0;
  /// Ends a connection.
  /// @param reset whether it is reset instead of closed. @return whether there was such a client
  virtual bool close_client (int number, bool reset) = 0;
  /// Sends bytes unchanged to a client. @return whether there was such a client
  virtual bool send_bytes (int number, std::string_view bytes) = 0;

  /// Closes all connections and starts again with the same options. @throws std::exception as at the start
  virtual void start_over () = 0;
  /// Must be called when the rate or the pause of the world's clock has been changed.
  virtual void pace_changed () = 0;
};

} // namespace sim
