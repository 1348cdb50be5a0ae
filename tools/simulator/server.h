#pragma once

#include "options.h"

namespace sim {

/// Listens on port 8913 of the address and serves a world of its own until a signal asks for the end.
/// @throws std::exception when an address cannot be had or a file cannot be used.
void serve (const Options &options);

} // namespace sim
