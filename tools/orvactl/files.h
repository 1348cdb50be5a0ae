#pragma once

#include "output.h"

#include <map>
#include <string>

namespace orvactl {

/// Reads a whole file; "-" is the standard input. @throws Problem with Exit::failed
std::string read_file (const std::string &path);

/// Writes a whole file; an old one is replaced only when all has been written. @throws Problem with
/// Exit::failed
void write_file (const std::string &path, const std::string &text);

/// Reads a JSON object whose values are texts. @throws Problem with Exit::usage, which says where the fault
/// is
std::map<std::string, std::string> read_pairs (const std::string &path);

} // namespace orvactl
