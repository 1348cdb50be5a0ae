#pragma once

#include <string>

namespace sim {

struct ControlAddress {
  std::string host; ///< IPv4 address
  int port = 0;
};

/// Reads `127.0.0.1:9913`. @throws std::runtime_error that says what is wrong with it
ControlAddress read_control_address (const std::string &text);

/// For the command line: returns what is wrong with the text, or an empty text when it is right.
std::string check_control_address (const std::string &text);

/// Whether only this machine can reach the address.
bool is_loopback (const std::string &control_address);

} // namespace sim
