#include "control/address.h"

#include "values.h"

#include <asio/ip/address_v4.hpp>
#include <stdexcept>

namespace sim {

ControlAddress read_control_address (const std::string &text) {
  const std::size_t colon = text.rfind (':');
  asio::error_code error;
  const std::string host = text.substr (0, colon);
  asio::ip::make_address_v4 (host, error);
  const auto port =
      colon == text.npos ? std::nullopt : read_unsigned (std::string_view (text).substr (colon + 1), 65535);
  if (error || !port || *port == 0)
    throw std::runtime_error ("'" + text + "' is not an address and port such as 127.0.0.1:9913");
  return {host, static_cast<int> (*port)};
}

std::string check_control_address (const std::string &text) {
  try {
    read_control_address (text);
    return "";
  } catch (const std::runtime_error &problem) {
    return problem.what ();
  }
}

bool is_loopback (const std::string &control_address) {
  return asio::ip::make_address_v4 (read_control_address (control_address).host).is_loopback ();
}

} // namespace sim
