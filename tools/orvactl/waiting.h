#pragma once

#include "session.h"

#include <functional>
#include <string>

namespace orvactl {

/// Whether a channel has reached what a command was to cause. `before` is its state before the command.
using Reached = std::function<bool (const orva::ChannelState &before, const orva::ChannelState &now)>;

/// The option --wait.
Parameter wait_option ();

/// Sends a command to channels. With --wait it returns when each of them has reached a state, and prints the
/// states as JSON if JSON is wanted.
Exit send_and_wait (Session &session, const Arguments &arguments, orva::Channels channels,
                    const std::function<void ()> &send, const Reached &reached);

/// Waits for a state of a channel within the limit. @throws Problem with Exit::timed_out
orva::ChannelState wait_for_state (Session &session, orva::Channel channel,
                                   const std::function<bool (const orva::ChannelState &)> &reached);

/// A condition of a channel that can be tested.
struct Condition {
  orva::Channel channel;
  std::function<bool (const orva::ChannelState &)> holds;
};
/// @throws orva::invalid for a timecode that the server does not have
Condition condition_of (Link &link, const std::string &text);

/// Whether a channel is at a position, or plays on from it.
bool is_at (const orva::ChannelState &state, orva::Position position);

} // namespace orvactl
