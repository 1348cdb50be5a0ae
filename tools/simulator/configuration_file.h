#pragma once

#include "options.h"

#include <string>
#include <vector>

namespace sim {

/// The servers of a configuration file: a JSON list with an object for each, or an object with the list as
/// `servers`. Members are named like the options of the command line; what is absent is as there.
/// @throws std::runtime_error that names the file and what is wrong in it
std::vector<Options> read_configuration_file (const std::string &file, const Options &defaults);

/// @throws std::runtime_error when the servers cannot run beside each other
void check_servers (const std::vector<Options> &servers);

} // namespace sim
