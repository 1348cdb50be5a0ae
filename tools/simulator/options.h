#pragma once

#include <string>

namespace sim {

/// What the command line says.
struct Options {
  std::string address = "127.0.0.1";
  std::string name = "SIMULATOR";
  std::string standard = "1080_59_94i";
  bool verbose = false; ///< log reports and raw documents too
  bool quiet = false;   ///< log nothing but faults
  bool strict = false;  ///< refuse documents that are not written byte for byte as expected
};

} // namespace sim
