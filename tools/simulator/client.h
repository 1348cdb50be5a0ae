#pragma once

#include <set>
#include <string>
#include <utility>

namespace sim {

/// One connection, as the rest of the server sees it: where answers go, and what the client has asked for.
/// What is kept here is lost with the connection.
class Client {
public:
  explicit Client (int client_number) : number (client_number) {}
  Client (const Client &) = delete;
  Client &operator= (const Client &) = delete;
  virtual ~Client () = default;

  /// Queues a message. Never waits.
  virtual void send (std::string message) = 0;

  /// So much waits to be sent that reports which will soon be outdated are better left out.
  virtual bool lags () const = 0;

  const int number;                              ///< for the log
  std::set<int> reports;                         ///< numbers of `ReportType`
  std::set<std::pair<int, int>> channel_reports; ///< channel, number of `ChannelReportType`
};

} // namespace sim
