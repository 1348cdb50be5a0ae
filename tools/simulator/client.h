#pragma once

#include "items.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace sim {

/// A list that a client is sending to the server, item by item.
struct ListDraft {
  std::string id;
  std::vector<Item> items;
};

/// Items of a loaded list that are about to be moved.
struct ReorderDraft {
  int channel = 0;
  std::vector<std::size_t> items;
};

/// Sends the next piece of a long answer: at most some tens of kilobytes. @return whether there is more to
/// send
using Producer = std::function<bool ()>;

/// One connection, as the rest of the server sees it. Answers are sent to it, and it keeps what the client
/// has asked for until the connection ends.
class Client {
public:
  Client (int client_number, std::string client_name)
      : number (client_number), name (std::move (client_name)) {}
  Client (const Client &) = delete;
  Client &operator= (const Client &) = delete;
  virtual ~Client () = default;

  /// Queues a message. Never waits.
  virtual void send (std::string message) = 0;

  /// Calls the producer until it returns false, each time when the client has taken most of what was sent
  /// before. The next command of this client waits for the last call. Reports and other clients do not wait.
  virtual void produce (Producer producer) = 0;

  /// Whether so many bytes wait to be sent that reports of positions should be left out.
  virtual bool lags () const = 0;

  const int number;                              ///< of the connection, from 1
  const std::string name;                        ///< for the log, such as `#1`
  std::set<int> reports;                         ///< numbers of `ReportType`
  std::set<std::pair<int, int>> channel_reports; ///< channel, number of `ChannelReportType`
  std::set<int> unsent_positions;                ///< channels whose last position was not sent
  std::map<std::string, std::string> watched;    ///< metadata databases, with the prefix of the keys
  std::set<std::string> watched_keys;            ///< of the user dictionary

  // Drafts that several commands build up, one for playlists and one for chase lists.
  std::array<std::optional<ListDraft>, 2> list_drafts;
  std::array<std::optional<ReorderDraft>, 2> reorder_drafts;
  bool exporting = false;
};

} // namespace sim
