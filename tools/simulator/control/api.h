#pragma once

#include "control/json.h"
#include "control/steered_server.h"

#include <map>
#include <string>
#include <vector>

namespace sim {

/// A request to the control address, without what is HTTP about it.
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

/// Carries out what is asked for at the control address. One thread, that of the server.
class ControlApi {
public:
  explicit ControlApi (std::vector<SteeredServer *> servers) : servers_ (std::move (servers)) {}

  /// Never throws: what goes wrong is an `error` in the reply.
  ControlReply handle (const ControlRequest &request) noexcept;

  /// What the page shows: the state with the last commands. Empty when there is no such server.
  std::string page_state (const std::string &server) noexcept;

  /// The server that a request names by its address, or the first one. @throws std::exception
  SteeredServer &server_of (const std::string &address) const;

private:
  Json carry_out (const ControlRequest &request);

  const std::vector<SteeredServer *> servers_;
};

} // namespace sim
