#pragma once

#include "options.h"

#include <vector>

namespace sim {

/// Listens on port 8913 of each address, with a separate simulated server on each, until SIGINT, SIGTERM or
/// the end of the scenario.
/// @return the exit status. @throws std::exception when an address or a file cannot be used
int serve (const std::vector<Options> &servers, const Steering &steering);

} // namespace sim
