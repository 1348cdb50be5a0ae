#include "clock.h"
#include "configuration_file.h"
#include "control/address.h"
#include "log.h"
#include "server.h"
#include "standard.h"
#include "trace/proxy.h"
#include "trace/replay.h"

#include <CLI/CLI.hpp>
#include <csignal>

namespace {

using namespace sim;

/// All that the command line says.
struct CommandLine {
  Options options;
  std::vector<std::string> addresses;
  std::string config;
  std::string start;
  Steering steering;
  ProxyOptions proxy;
  ReplayOptions replay;
};

std::string check_time (const std::string &text) {
  return read_time (text) ? "" : "'" + text + "' is not a time such as 2026-01-31T12:00:00Z";
}

std::string check_standard (const std::string &name) {
  return find_standard (name) ? "" : "there is no video standard " + name;
}

std::string standards_text () {
  std::string text = "Video standards:";
  std::size_t column = text.size ();
  for (const std::string_view name : standard_names ()) {
    column = column + name.size () + 1 > 78 ? 1 : column + name.size () + 1;
    text += column == 1 ? "\n  " : " ";
    column += column == 1 ? name.size () + 1 : 0;
    text += name;
  }
  return text +
         "\n\nExit status: 0 when it was asked to end, or a scenario or replay went as expected; 1 when it "
         "could not\nstart or go on; 2 when the command line is wrong; 3 when a scenario or a replay went "
         "otherwise.";
}

void add_server_options (CLI::App &app, CommandLine &line) {
  Options &options = line.options;
  app.add_option ("--address", line.addresses, "IPv4 address to listen on; several make several servers")
      ->check (CLI::ValidIPV4);
  app.add_option ("--config", line.config, "JSON file with a block of options for each of several servers")
      ->excludes ("--address");
  app.add_option ("--name", options.name, "computer name that the server reports")->capture_default_str ();
  app.add_option ("--standard", options.standard, "video standard, see below")
      ->capture_default_str ()
      ->check (check_standard);
  app.add_option ("--clips", options.clips, "text file of clips and directories");
  app.add_option ("--generate", options.generate, "add this many generated clips");
  app.add_option ("--database", options.database, "file to keep everything in, for the next start");
  app.add_option ("--report-rate", options.report_rate,
                  "most positions of a channel in a second, 0 for each field");
  app.add_option ("--refuse-metadata", options.refuse_metadata,
                  "refuse every Nth change of metadata, 0 for none");
  app.add_option ("--faults", options.faults, "JSON file of faults to start with");
  app.add_flag ("--empty", options.empty, "load nothing on the channels");
  app.add_flag ("--verbose", options.verbose, "log reports and raw documents too");
  app.add_flag ("--quiet", options.quiet, "log no commands");
  app.add_flag ("--strict", options.strict, "refuse documents that differ by a byte from the expected form");
}

void add_control_options (CLI::App &app, Steering &steering) {
  app.add_option ("--control", steering.control, "address and port to steer it from, such as 127.0.0.1:9913")
      ->check (check_control_address);
  app.add_option ("--control-token", steering.control_token,
                  "secret that every request to the control address must carry")
      ->envname ("ORVA_SIMULATOR_TOKEN");
}

void add_steering_options (CLI::App &app, CommandLine &line) {
  Options &options = line.options;
  add_control_options (app, line.steering);
  app.add_option ("--script", line.steering.script, "JSON file of a scenario; the program ends with it");
  app.add_option ("--start", line.start, "time of day at the first field, such as 2026-01-31T12:00:00Z")
      ->check (check_time);
  app.add_flag ("--paused", options.paused, "let time pass by command only");
  app.add_option ("--rate", options.rate, "let time run this many times as fast")
      ->capture_default_str ()
      ->check (CLI::Range (0.001, 1000.0));
  app.add_option ("--seed", options.seed, "seed of all random choices");
}

void add_proxy (CLI::App &app, CommandLine &line) {
  CLI::App &proxy =
      *app.add_subcommand ("proxy", "pass messages between clients and a server, and record them");
  proxy.add_option ("--listen", line.proxy.listen, "IPv4 address to listen on")
      ->required ()
      ->check (CLI::ValidIPV4);
  proxy.add_option ("--server", line.proxy.server, "IPv4 address of the server")
      ->required ()
      ->check (CLI::ValidIPV4);
  proxy.add_option ("--trace", line.proxy.trace, "file to write, JSON lines")->required ();
  proxy.add_option ("--faults", line.proxy.faults, "JSON file of faults to put into the server's traffic");
  proxy.add_option ("--seed", line.proxy.seed, "seed of all random choices");
  line.proxy.steering.page = false;
  add_control_options (proxy, line.proxy.steering);
}

void add_replay (CLI::App &app, CommandLine &line) {
  CLI::App &replay = *app.add_subcommand ("replay", "play the server's side of what a proxy has recorded");
  replay.add_option ("trace", line.replay.trace, "file that a proxy has written")->required ();
  replay.add_option ("--listen", line.replay.listen, "IPv4 address to listen on")
      ->capture_default_str ()
      ->check (CLI::ValidIPV4);
}

void check_token (const Steering &steering) {
  if (!steering.control.empty () && steering.control_token.empty () && !is_loopback (steering.control))
    throw CLI::ValidationError ("--control", "an address outside loopback needs a --control-token");
}

std::vector<Options> servers_of (CommandLine &line) {
  line.options.start = read_time (line.start);
  line.options.journal = !line.steering.control.empty () || !line.steering.script.empty ();
  std::vector<Options> servers;
  if (!line.config.empty ())
    servers = read_configuration_file (line.config, line.options);
  else if (line.addresses.empty ())
    servers = {line.options};
  for (const std::string &address : line.addresses) {
    servers.push_back (line.options);
    servers.back ().address = address;
  }
  if (servers.size () > 1)
    for (Options &server : servers)
      server.log_prefix = server.address + ' ';
  return servers;
}

int run_servers (CommandLine &line) {
  const std::vector<Options> servers = servers_of (line);
  check_servers (servers);
  return serve (servers, line.steering);
}

} // namespace

int main (int argc, char **argv) {
  CommandLine line;
  CLI::App app (
      "A simulated video server: answers the control protocol on port 8913 from a state of its own.");
  app.set_version_flag ("--version", "orva-simulator " ORVA_SIMULATOR_VERSION);
  app.footer (standards_text ());
  add_server_options (app, line);
  add_steering_options (app, line);
  add_proxy (app, line);
  add_replay (app, line);
  app.require_subcommand (0, 1);
  try {
    app.parse (argc, argv);
    check_token (line.steering);
    check_token (line.proxy.steering);
    if (app.got_subcommand ("proxy") && line.proxy.listen == line.proxy.server)
      throw CLI::ValidationError ("--server", "the proxy cannot be its own server");
  } catch (const CLI::ParseError &problem) {
    return app.exit (problem) == 0 ? 0 : status_usage;
  }
  std::signal (SIGPIPE, SIG_IGN);
  std::signal (SIGXFSZ, SIG_IGN); // a file that may not grow is an error like a full disk
  try {
    if (app.got_subcommand ("proxy"))
      return run_proxy (line.proxy);
    if (app.got_subcommand ("replay"))
      return run_replay (line.replay);
    return run_servers (line);
  } catch (const std::exception &fault) {
    print_error (std::string ("cannot go on: ") + fault.what ());
    return status_failed;
  }
}
