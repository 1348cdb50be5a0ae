#include "control/guard.h"

#include <algorithm>
#include <asio/ip/address_v4.hpp>

namespace sim {

namespace {

std::vector<std::string> own_hosts (const ControlAddress &address) {
  const std::string port = ':' + std::to_string (address.port);
  std::vector<std::string> hosts = {address.host + port};
  if (asio::ip::make_address_v4 (address.host).is_loopback ())
    hosts.push_back ("localhost" + port);
  return hosts;
}

// Compares every character, so that the time does not show where the texts differ.
bool same_secret (const std::string &given, const std::string &wanted) {
  unsigned difference = given.size () == wanted.size () ? 0 : 1;
  for (std::size_t i = 0; i < given.size (); ++i)
    difference |=
        static_cast<unsigned char> (given[i]) ^ static_cast<unsigned char> (wanted[i % wanted.size ()]);
  return difference == 0;
}

} // namespace

Guard::Guard (const ControlAddress &address, std::string token)
    : hosts_ (own_hosts (address)),
      any_port_ (address.host == "0.0.0.0" ? ':' + std::to_string (address.port) : ""),
      token_ (std::move (token)) {}

Guard::Decision Guard::check (const std::string &host, const std::string &origin,
                              const std::string &authorization, const std::string &token) const {
  if (!is_own_host (host))
    return {false, 403, "the Host of the request is not this address"};
  if (!origin.empty () && origin != "http://" + host)
    return {false, 403, "requests from pages of other origins are refused"};
  if (!token_.empty () && authorization.rfind ("Bearer ", 0) == 0
          ? !same_secret (authorization.substr (7), token_)
          : !token_.empty () && !same_secret (token, token_))
    return {false, 401, "the request does not carry the token"};
  return {};
}

bool Guard::is_own_host (const std::string &host) const {
  if (std::find (hosts_.begin (), hosts_.end (), host) != hosts_.end ())
    return true;
  if (any_port_.empty () || !host.ends_with (any_port_))
    return false;
  asio::error_code error;
  asio::ip::make_address_v4 (host.substr (0, host.size () - any_port_.size ()), error);
  return !error;
}

} // namespace sim
