#include "settings.h"
#include "command_line.h"

#define TOML_EXCEPTIONS 1
#include <toml++/toml.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace orvactl {

namespace {

std::string environment (const char *name) {
  const char *const value = std::getenv (name);
  return value == nullptr ? "" : value;
}

/// Where the user's own file is; empty when the system does not say.
std::string default_path () {
  for (const auto &[variable, rest] : {std::pair ("XDG_CONFIG_HOME", "/orva/config.toml"),
                                       {"HOME", "/.config/orva/config.toml"},
                                       {"APPDATA", "/orva/config.toml"}})
    if (const std::string folder = environment (variable); !folder.empty ())
      return folder + rest;
  return "";
}

/// Takes what a file says, and names the file in each fault.
class Reader {
public:
  Reader (Configuration &configuration) : configuration_ (configuration) {}

  void read () {
    std::ifstream file (std::filesystem::path (configuration_.path), std::ios::binary);
    std::stringstream text;
    text << file.rdbuf ();
    if (!file)
      throw Problem (Exit::usage, configuration_.path + " cannot be read");
    try {
      const toml::table table = toml::parse (text.str (), configuration_.path);
      for (const auto &[key, value] : table)
        take (std::string (key.str ()), value);
    } catch (const toml::parse_error &error) {
      throw Problem (Exit::usage, configuration_.path + ", line " +
                                      std::to_string (error.source ().begin.line) + ": " +
                                      std::string (error.description ()));
    }
  }

private:
  void take (const std::string &key, const toml::node &value) {
    if (key == "server" && value.is_string ())
      configuration_.servers.push_back (**value.as_string ());
    else if (key == "server" && value.is_array ())
      value.as_array ()->for_each ([&] (const auto &each) { take_server (each); });
    else if (key == "timeout" && value.value<std::string> ())
      take_limit (*value.value<std::string> (), value);
    else if (key == "timeout" && value.is_number ())
      take_limit (std::to_string (*value.value<double> ()), value);
    else if (key == "servers" && value.is_table ())
      for (const auto &[name, address] : *value.as_table ())
        take_named (std::string (name.str ()), address);
    else
      fault (value, "\"" + key + "\" is unknown or has a value of the wrong kind");
  }

  void take_server (const toml::node &value) {
    if (!value.is_string ())
      fault (value, "a server is a text");
    configuration_.servers.push_back (**value.as_string ());
  }
  void take_limit (const std::string &text, const toml::node &value) {
    configuration_.limit = time_of (text);
    if (!configuration_.limit)
      fault (value, "\"timeout\" is a number of seconds, or a time such as \"500ms\"");
  }
  void take_named (const std::string &name, const toml::node &value) {
    const orva::Address address (value.value_or (std::string ()));
    if (!address.valid ())
      fault (value, "the address of \"" + name + "\" is not an IPv4 address such as \"10.0.0.5\"");
    configuration_.named.push_back ({name, address});
  }

  [[noreturn]] void fault (const toml::node &value, const std::string &text) const {
    throw Problem (Exit::usage, configuration_.path + ", line " +
                                    std::to_string (value.source ().begin.line) + ": " + text);
  }

  Configuration &configuration_;
};

ServerName find_server (const std::string &text, const Configuration &configuration) {
  std::vector<std::string> names;
  for (const ServerName &each : configuration.named) {
    if (each.label == text)
      return each;
    names.push_back (each.label);
  }
  const orva::Address address (text);
  if (address.valid ())
    return {text, address};
  const std::string near = nearest (text, names);
  throw Problem (Exit::usage, "\"" + text +
                                  "\" is neither an IPv4 address nor the name of a server in the "
                                  "configuration." +
                                  (near.empty () ? "" : " Did you mean \"" + near + "\"?"));
}

} // namespace

Configuration read_configuration (const Arguments &global) {
  Configuration configuration;
  configuration.path = global.text_or ("--config", default_path ());
  const bool named = global.has ("--config");
  std::error_code ignored;
  if (named || (!configuration.path.empty () && std::filesystem::exists (configuration.path, ignored)))
    Reader (configuration).read ();
  return configuration;
}

Settings settings_of (const Arguments &global) {
  const Configuration configuration = read_configuration (global);
  std::vector<std::string> names = global.all ("--server");
  if (names.empty () && !environment ("ORVA_SERVER").empty ())
    names = {environment ("ORVA_SERVER")};
  if (names.empty ())
    names = configuration.servers;
  if (names.empty ())
    throw Problem (Exit::usage, "No server is named. Use --server, ORVA_SERVER or the configuration file.");
  Settings settings;
  for (const std::string &name : names)
    settings.servers.push_back (find_server (name, configuration));
  settings.limit = global.time_or ("--timeout", configuration.limit.value_or (settings.limit));
  settings.json = global.has ("--json");
  return settings;
}

} // namespace orvactl
