#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

/// The port of the protocol.
inline constexpr unsigned short port = 8913;

/// The options of one server.
struct Options {
  std::string address = "127.0.0.1";
  std::string name = "SIMULATOR";
  std::string standard = "1080_59_94i";
  std::string clips;             ///< file of clips; empty: the built-in ones
  std::string database;          ///< file of clips, lists and metadata; empty: in memory
  std::string log_prefix;        ///< start of each line of the log; names the server when there are several
  std::string faults;            ///< file of faults that are set at the start
  std::uint32_t generate = 0;    ///< number of generated clips
  std::uint32_t report_rate = 0; ///< most positions of a channel in a second; 0: one in each field
  std::uint32_t refuse_metadata = 0; ///< every Nth change of metadata is refused; 0: none
  std::optional<std::int64_t> start; ///< milliseconds since 1970 at the first field; absent: now
  double rate = 1;                   ///< how many times faster than real time the clock runs
  bool paused = false;               ///< time passes only by command
  std::optional<std::uint64_t> seed; ///< of all random choices; absent: a different one at each start
  bool journal = false;              ///< keep the last commands and reports
  bool empty = false;                ///< nothing is loaded at the start
  bool verbose = false;              ///< also log reports and raw documents
  bool quiet = false;                ///< log no commands
  bool strict = false;               ///< refuse documents that are not written byte for byte as expected
};

/// How the servers of this process are controlled from outside.
struct Steering {
  std::string control;       ///< address and port of the control address; empty: none
  std::string control_token; ///< token that each request must carry; empty: none
  bool page = true;          ///< whether the control address serves the page
  std::string script;        ///< file of a scenario; empty: none
};

// Exit statuses.
inline constexpr int status_failed = 1;     ///< the program could not start or go on
inline constexpr int status_usage = 2;      ///< the command line is wrong
inline constexpr int status_unexpected = 3; ///< a scenario or a replay did not go as expected

} // namespace sim
