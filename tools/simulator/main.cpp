#include "clock.h"
#include "control/address.h"
#include "log.h"
#include "server.h"
#include "standard.h"

#include <CLI/CLI.hpp>
#include <csignal>

int main (int argc, char **argv) {
  sim::Options options;
  std::string start;
  CLI::App app (
      "A simulated video server: answers the control protocol on port 8913 from a state of its own.");
  app.add_option ("--address", options.address, "IPv4 address to listen on")->capture_default_str ();
  app.add_option ("--name", options.name, "computer name the server gives")->capture_default_str ();
  app.add_option ("--standard", options.standard, "video standard, such as 1080_50i")->capture_default_str ();
  app.add_option ("--clips", options.clips, "text file of clips and directories");
  app.add_option ("--generate", options.generate, "add so many generated clips");
  app.add_option ("--database", options.database, "file to keep everything in, for the next start");
  app.add_option ("--report-rate", options.report_rate,
                  "most positions of a channel in a second, 0 for each field");
  app.add_option ("--refuse-metadata", options.refuse_metadata,
                  "refuse every so manyth change of metadata, 0 for none");
  app.add_option ("--control", options.control, "address and port to steer it from, such as 127.0.0.1:9913")
      ->check (sim::check_control_address);
  app.add_option ("--control-token", options.control_token,
                  "secret that every request to the control address must carry")
      ->envname ("ORVA_SIMULATOR_TOKEN");
  app.add_option ("--faults", options.faults, "JSON file of faults to start with");
  app.add_option ("--start", start, "time of day at the first field, such as 2026-01-31T12:00:00Z")
      ->check ([] (const std::string &text) {
        return sim::read_time (text) ? "" : "'" + text + "' is no time such as 2026-01-31T12:00:00Z";
      });
  app.add_flag ("--paused", options.paused, "let no time pass but by hand");
  app.add_option ("--rate", options.rate, "run so many times as fast")
      ->capture_default_str ()
      ->check (CLI::Range (0.001, 1000.0));
  app.add_option ("--seed", options.seed, "number that all that is random starts from");
  app.add_flag ("--empty", options.empty, "load nothing on the channels");
  app.add_flag ("--verbose", options.verbose, "log reports and raw documents too");
  app.add_flag ("--quiet", options.quiet, "log no commands");
  app.add_flag ("--strict", options.strict, "refuse documents that differ by a byte from the expected form");
  CLI11_PARSE (app, argc, argv);
  options.start = sim::read_time (start);
  if (!options.control.empty () && options.control_token.empty () && !sim::is_loopback (options.control))
    return app.exit (CLI::ValidationError ("--control", "an address off loopback needs a --control-token"));
  if (!sim::find_standard (options.standard))
    return app.exit (CLI::ValidationError ("--standard", "there is no video standard " + options.standard));
  std::signal (SIGPIPE, SIG_IGN);
  try {
    sim::serve (options);
  } catch (const std::exception &fault) {
    sim::say (std::string ("cannot go on: ") + fault.what ());
    return 1;
  }
  return 0;
}
