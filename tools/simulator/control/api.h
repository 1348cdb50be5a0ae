#pragma once

#include "control/json.h"
#include "control/steered_server.h"

#include <map>
#include <string>
#include <vector>

namespace sim {

/// A request to the control address, without the parts that only HTTP needs.
struct ControlRequest {
  std::string method;
  std::string path; ///< such as `/channels/A`
  std::map<std::string, std::string> query;
  std::string body;
};

struct ControlReply {
  int status = 200;
  std::string body; ///< JSON
};

/// Carries out the requests to the control address. It must be used on the thread of the servers only.
class ControlApi {
public:
  explicit ControlApi (std::vector<SteeredServer *> servers) : servers_ (std::move (servers)) {}

  /// Carries out a request. Never throws: the reply to a request that fails has an `error`.
  ControlReply handle (const ControlRequest &request) noexcept;

  /// The state that the page shows, with the last commands, as JSON. Empty when there is no such server.
  std::string page_state (const std::string &server) noexcept;

  /// The server with that address, or the first server when the address is empty.
  /// @throws std::exception when there is no such server
  SteeredServer &server_of (const std::string &address) const;

private:
  Json carry_out (const ControlRequest &request);

  const std::vector<SteeredServer *> servers_;
};

} // namespace sim
