#pragma once

#include "control/api.h"
#include "control/mailbox.h"
#include "options.h"

#include <memory>

namespace sim {

/// The control address: HTTP with JSON, on its own threads. They pass each request to the event loop, which
/// carries it out.
class Control {
public:
  /// Starts to listen. @throws std::runtime_error when the address cannot be used
  Control (Mailbox &mailbox, std::vector<SteeredServer *> servers, const Steering &steering);
  /// Ends all requests. The mailbox must be closed before this, so that no request waits for the loop.
  ~Control ();

private:
  class Http;
  const std::unique_ptr<Http> http_;
};

} // namespace sim
