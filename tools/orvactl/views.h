#pragma once

#include "output.h"
#include "session.h"

#include <string>
#include <vector>

namespace orvactl {

// How values are shown, as JSON and as text. The members of the JSON objects are documented and stay as they
// are.

Json json_of (orva::Position position, const orva::Timebase &base);
Json json_of (const orva::ChannelState &state, orva::Channel channel, const orva::Timebase &base);
Json json_of (const orva::ClipInfo &info, const std::string &name, const orva::Timebase &base);
Json json_of (const orva::Metadata &pairs);

/// A speed such as "1" or "-0.5".
std::string speed_text (double speed);
/// A name, or "-" for none.
std::string name_text (const std::string &name);
/// What of its input a channel shows.
std::string input_text (orva::Input input);

/// The heading and a row of a table of channels.
std::vector<std::string> channel_heading (bool servers);
std::vector<Cell> channel_row (const orva::ChannelState &state, orva::Channel channel,
                               const orva::Timebase &base);

/// The states of channels, asked for one after the other.
std::vector<std::pair<orva::Channel, orva::ChannelState>> states_of (Link &link, orva::Channels channels);

} // namespace orvactl
