#pragma once

#include "arguments.h"

#include <string>
#include <vector>

namespace orvactl {

/// A server that a command works on.
struct ServerName {
  std::string label; ///< as it was named
  orva::Address address;
};

/// What holds for all commands of one run.
struct Settings {
  std::vector<ServerName> servers; ///< at least one
  orva::Limit limit = std::chrono::seconds (5);
  bool json = false;
};

/// What the configuration file says.
struct Configuration {
  std::string path;
  std::vector<std::string> servers; ///< to be used when none is named
  std::vector<ServerName> named;
  std::optional<orva::Limit> limit{};
};

/// Reads the file that is named, else the user's own if there is one. @throws Problem with Exit::usage
Configuration read_configuration (const Arguments &global);

/// The global options, completed by the environment and the configuration. @throws Problem with Exit::usage
Settings settings_of (const Arguments &global);

} // namespace orvactl
