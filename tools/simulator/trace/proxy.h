#pragma once

#include "options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

struct ProxyOptions {
  std::string listen; ///< IPv4 address, port 8913
  std::string server; ///< IPv4 address, port 8913
  std::string trace;  ///< file to write
  std::string faults; ///< file of faults; empty: none at the start
  Steering steering;  ///< its control address; a proxy has no script
  std::optional<std::uint64_t> seed;
};

/// Passes messages between clients and a server and writes them to a trace, until SIGINT or SIGTERM. Without
/// faults and a control address, the bytes are passed on as they come.
/// @return the exit status. @throws std::exception when it cannot listen or write
int run_proxy (const ProxyOptions &options);

} // namespace sim
