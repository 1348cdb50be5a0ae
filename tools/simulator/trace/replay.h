#pragma once

#include <string>

namespace sim {

struct ReplayOptions {
  std::string trace;                ///< file that a proxy has written
  std::string listen = "127.0.0.1"; ///< IPv4 address, port 8913
};

/// Plays the server's side of a trace: the first client gets what the first client of the trace got, and so
/// on. Ends when all connections have been played, or when a client sends something else than in the trace or
/// disconnects too early. In the second case it writes to the standard error what differs. Identifiers of
/// commands may differ from those of the trace.
/// @return the exit status. @throws std::exception when it cannot listen or read
int run_replay (const ReplayOptions &options);

} // namespace sim
