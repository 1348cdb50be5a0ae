#pragma once

#include "control/journal.h"
#include "faults/faults.h"
#include "world.h"

#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// One connection, as it is listed.
struct Connection {
  int number = 0;
  std::string address;            ///< where it comes from
  std::size_t unsent = 0;         ///< bytes that wait to be sent
  const Client *client = nullptr; ///< null for one of a proxy
};

/// A running server as it is steered from outside. One thread.
class SteeredServer {
public:
  virtual ~SteeredServer () = default;

  /// Where it listens.
  virtual const std::string &address () const = 0;
  /// @throws Refusal when it has no state of its own, as a proxy
  virtual World &world () = 0;
  virtual Faults &faults () = 0;
  virtual Journal &journal () = 0;

  virtual std::vector<Connection> connections () = 0;
  /// Ends a connection, with a reset or without. @return whether there was such a client
  virtual bool close_client (int number, bool reset) = 0;
  /// Sends a client bytes as they are. @return whether there was such a client
  virtual bool send_bytes (int number, std::string_view bytes) = 0;

  /// Closes all connections and starts again, as the options say. @throws std::exception as at the start
  virtual void start_over () = 0;
  /// The pace of the world's clock has been changed.
  virtual void pace_changed () = 0;
};

} // namespace sim
