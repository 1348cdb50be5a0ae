#pragma once

#include "control/api.h"
#include "control/mailbox.h"
#include "options.h"

#include <memory>

namespace sim {

/// The control address: HTTP with JSON, on threads of its own. The loop does all the work.
class Control {
public:
  /// Listens from now on. @throws std::runtime_error when the address cannot be used
  Control (Mailbox &mailbox, std::vector<SteeredServer *> servers, const Steering &steering);
  /// Ends all requests. The mailbox must have been closed before, so that none waits for the loop.
  ~Control ();

private:
  class Http;
  const std::unique_ptr<Http> http_;
};

} // namespace sim
