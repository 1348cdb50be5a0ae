#pragma once

#include "control/json.h"
#include "control/steered_server.h"

#include <string>

namespace sim {

// What is done to a world from outside. All of it ends with the reports that clients have asked for.
// They throw a Refusal when the server would refuse it, another exception when it cannot be understood.

/// Carries out commands as a client would: `{"play": {"Channel": "A"}}`, or a list of such.
/// @return the answers to each
Json run_commands (World &world, const Json &commands);

/// Loads, places and moves a channel: any of `clip` (null unloads), `position`, `speed`, `play`.
void set_channel (World &world, int channel, const Json &wanted);

/// Makes a clip, or makes it anew, with the attributes that a line of the clips' file can have.
void set_clip (World &world, const std::string &name, const Json &attributes);
/// Removes a clip, read-only or not, that is loaded nowhere.
void drop_clip (World &world, const std::string &name);
Json clip_json (World &world, const std::string &name);
/// Names behind `after`, in order, so many at most.
Json clip_names_json (World &world, const std::string &after, std::uint64_t most);

/// Sends a report to those who have asked for its kind: `kind`, with `channel` for that of a channel, and
/// `body`, such as `{"temperature": {"Temperature10": 480}}`; or to all clients with `everyone`.
void push_report (World &world, const Json &report);

/// Changes how time goes by: any of `paused` and `rate`.
void set_pace (SteeredServer &server, const Json &pace);
/// Lets so many `fields` go by at once.
void step (SteeredServer &server, const Json &step);

} // namespace sim
