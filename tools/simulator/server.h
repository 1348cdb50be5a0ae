#pragma once

#include "world.h"

namespace sim {

/// Listens on port 8913 of the world's address and serves it until a signal asks for the end.
/// @throws std::exception when the address cannot be had.
void serve (World &world);

} // namespace sim
