#pragma once

#include "options.h"

#include <vector>

namespace sim {

/// Listens on port 8913 of each address and serves a world of its own there, until a signal asks for the end
/// or the scenario has ended.
/// @return the exit status. @throws std::exception when an address cannot be had or a file cannot be used
int serve (const std::vector<Options> &servers, const Steering &steering);

} // namespace sim
