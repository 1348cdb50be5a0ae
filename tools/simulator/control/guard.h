#pragma once

#include "control/address.h"

#include <string>
#include <vector>

namespace sim {

/// Decides which requests are accepted. It refuses requests from pages of other origins, requests whose host
/// is not this address, and requests without the token if there is one. Any thread.
class Guard {
public:
  /// @param token that each request must carry; empty: none is needed
  Guard (const ControlAddress &address, std::string token);

  struct Decision {
    bool allowed = true;
    int status = 200;
    std::string why;
  };
  /// @param authorization header of that name. @param token from the query
  Decision check (const std::string &host, const std::string &origin, const std::string &authorization,
                  const std::string &token) const;

private:
  bool is_own_host (const std::string &host) const;

  const std::vector<std::string> hosts_; ///< names with ports that mean this address
  const std::string any_port_; ///< `:PORT` after any IPv4 address is accepted too; empty: only `hosts_`
  const std::string token_;
};

} // namespace sim
