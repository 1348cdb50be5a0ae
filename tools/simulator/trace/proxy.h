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
  std::string faults; ///< file of faults; without it and without a control address bytes pass as they come
  Steering steering;  ///< how it is steered; it has no script
  std::optional<std::uint64_t> seed;
};

/// Passes messages between clients and a server and writes them to a trace, until a signal ends it.
/// @return the exit status. @throws std::exception when it cannot listen or write
int run_proxy (const ProxyOptions &options);

} // namespace sim
