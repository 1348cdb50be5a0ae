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
  std::string clips;                 ///< file of clips; empty: a few of its own
  std::string database;              ///< file to keep everything in; empty: in memory
  std::string log_prefix;            ///< of each line of the log: names the server when there are several
  std::string faults;                ///< file of faults that are set at the start
  std::uint32_t generate = 0;        ///< number of generated clips
  std::uint32_t report_rate = 0;     ///< most positions in a second; 0: one each field
  std::uint32_t refuse_metadata = 0; ///< every Nth change of metadata is refused; 0: none
  std::optional<std::int64_t> start; ///< milliseconds since 1970 at the first field; absent: the present
  double rate = 1;                   ///< so many times faster than the real time
  bool paused = false;               ///< time passes by command only
  std::optional<std::uint64_t> seed; ///< of all that is random; absent: another one each time
  bool journal = false;              ///< keep the last commands
  bool empty = false;                ///< nothing is loaded at the start
  bool verbose = false;              ///< log reports and raw documents too
  bool quiet = false;                ///< log no commands
  bool strict = false;               ///< refuse documents that are not written byte for byte as expected
};

/// How the servers of this process are steered.
struct Steering {
  std::string control;       ///< address and port of the control address; empty: none
  std::string control_token; ///< what requests to it must carry; empty: nothing
  bool page = true;          ///< the control address has the page
  std::string script;        ///< file of a scenario; empty: none
};

// Exit statuses.
inline constexpr int status_failed = 1;     ///< it could not start or go on
inline constexpr int status_usage = 2;      ///< the command line is wrong
inline constexpr int status_unexpected = 3; ///< a scenario or a replay went otherwise than expected

} // namespace sim
