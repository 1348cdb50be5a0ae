#pragma once

#include "faults/faults.h"

#include <asio.hpp>
#include <functional>
#include <string>

namespace sim {

/// Accepts connections on port 8913 of an address, except while a fault forbids it. One thread.
class Listener {
public:
  struct Actions {
    std::function<void (asio::ip::tcp::socket)> accept; ///< takes a new connection
    std::function<void ()> end_all;                     ///< closes all connections
    std::function<void ()> refresh;                     ///< applies the changed faults to each connection
    std::function<void (const std::string &)> log;      ///< writes a line to the log
  };

  /// Sets `faults.changed`, so that changed rules take effect.
  Listener (asio::io_context &context, const std::string &address, Faults &faults, Actions actions);

  /// Starts to listen. @throws std::exception when the address cannot be used
  void open ();

private:
  void refresh ();
  void accept ();
  void accept_later (const asio::error_code &error);

  const asio::ip::tcp::endpoint endpoint_;
  Faults &faults_;
  const Actions actions_;
  asio::ip::tcp::acceptor acceptor_;
  asio::steady_timer timer_;
  bool accept_failed_ = false; ///< the last attempt to accept failed
};

} // namespace sim
