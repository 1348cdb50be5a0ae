#pragma once

#include "options.h"

#include <string>
#include <vector>

namespace sim {

/// Returns the options of the servers in a configuration file. The file is a JSON list with an object for
/// each server, or an object with this list as `servers`. Members have the names of the options of the
/// command line. For a member that is absent, the value of `defaults` is used.
/// @throws std::runtime_error that names the file and what is wrong in it
std::vector<Options> read_configuration_file (const std::string &file, const Options &defaults);

/// @throws std::runtime_error when an option is not valid, or two servers have the same address or database
void check_servers (const std::vector<Options> &servers);

} // namespace sim
