#include "configuration_file.h"

#include "clock.h"
#include "control/json.h"
#include "standard.h"

#include <asio/ip/address_v4.hpp>
#include <fmt/format.h>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace sim {

namespace {

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

template <typename Number>
Number number_of (const Json &json) {
  if (!json.is_number_unsigned () || json.get<std::uint64_t> () > std::numeric_limits<Number>::max ())
    refuse (fmt::format ("{} is not a number from 0 to {}", json_text (json),
                         std::numeric_limits<Number>::max ()));
  return json.get<Number> ();
}

double rate_of (const Json &json) {
  if (!json.is_number () || !(json.get<double> () >= 0.001 && json.get<double> () <= 1000))
    refuse (fmt::format ("{} is not a number from 0.001 to 1000", json_text (json)));
  return json.get<double> ();
}

std::int64_t start_of (const Json &json) {
  const std::optional<std::int64_t> start = read_time (json.get<std::string> ());
  if (!start)
    refuse (fmt::format ("{} is not a time such as 2026-01-31T12:00:00Z", json_text (json)));
  return *start;
}

void set_option (Options &options, const std::string &name, const Json &value) {
  const std::map<std::string, std::function<void ()>> setters = {
      {"address", [&] { options.address = value.get<std::string> (); }},
      {"name", [&] { options.name = value.get<std::string> (); }},
      {"standard", [&] { options.standard = value.get<std::string> (); }},
      {"clips", [&] { options.clips = value.get<std::string> (); }},
      {"database", [&] { options.database = value.get<std::string> (); }},
      {"faults", [&] { options.faults = value.get<std::string> (); }},
      {"generate", [&] { options.generate = number_of<std::uint32_t> (value); }},
      {"report-rate", [&] { options.report_rate = number_of<std::uint32_t> (value); }},
      {"refuse-metadata", [&] { options.refuse_metadata = number_of<std::uint32_t> (value); }},
      {"seed", [&] { options.seed = number_of<std::uint64_t> (value); }},
      {"start", [&] { options.start = start_of (value); }},
      {"rate", [&] { options.rate = rate_of (value); }},
      {"paused", [&] { options.paused = value.get<bool> (); }},
      {"empty", [&] { options.empty = value.get<bool> (); }},
      {"strict", [&] { options.strict = value.get<bool> (); }},
      {"quiet", [&] { options.quiet = value.get<bool> (); }},
      {"verbose", [&] { options.verbose = value.get<bool> (); }},
  };
  const auto setter = setters.find (name);
  if (setter == setters.end ())
    refuse ("there is no such option");
  setter->second ();
}

Options options_from (const Json &block, Options options) {
  if (!block.is_object () || !block.contains ("address"))
    refuse ("a server is an object with an \"address\"");
  for (const auto &[name, value] : block.items ())
    try {
      set_option (options, name, value);
    } catch (const std::exception &problem) {
      refuse (fmt::format ("\"{}\": {}", name, problem.what ()));
    }
  return options;
}

} // namespace

std::vector<Options> read_configuration_file (const std::string &file, const Options &defaults) {
  std::ifstream stream (file);
  std::ostringstream text;
  text << stream.rdbuf ();
  if (!stream)
    refuse (file + " cannot be read");
  std::vector<Options> servers;
  try {
    const Json json = parse_json (text.str ());
    const Json &blocks = json.is_object () && json.contains ("servers") ? json["servers"] : json;
    if (!blocks.is_array () || blocks.empty ())
      refuse ("the servers are not a list");
    for (const Json &block : blocks)
      try {
        servers.push_back (options_from (block, defaults));
      } catch (const std::exception &problem) {
        refuse (fmt::format ("server {}: {}", servers.size () + 1, problem.what ()));
      }
  } catch (const std::exception &problem) {
    refuse (fmt::format ("{}: {}", file, problem.what ()));
  }
  return servers;
}

void check_servers (const std::vector<Options> &servers) {
  std::set<std::string> addresses, databases;
  for (const Options &options : servers) {
    asio::error_code error;
    asio::ip::make_address_v4 (options.address, error);
    if (error)
      refuse (fmt::format ("'{}' is not an IPv4 address", options.address));
    if (!addresses.insert (options.address).second)
      refuse (fmt::format ("two servers have the address {}", options.address));
    if (!options.database.empty () && !databases.insert (options.database).second)
      refuse (fmt::format ("two servers have the database {}", options.database));
    if (!find_standard (options.standard))
      refuse (fmt::format ("there is no video standard {}", options.standard));
  }
}

} // namespace sim
