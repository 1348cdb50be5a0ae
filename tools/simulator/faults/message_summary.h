#pragma once

#include <set>
#include <string>
#include <string_view>

namespace sim {

/// The kind of a message in either direction, and the channels that it names.
struct MessageSummary {
  std::string root; ///< `cmd`, `reply` or `report`; empty when the message cannot be read
  std::string xid;
  std::string name;               ///< the command, or the body of a reply or report
  std::set<std::string> channels; ///< the letters of all channels it names
};

MessageSummary summary_of (std::string_view message);

} // namespace sim
