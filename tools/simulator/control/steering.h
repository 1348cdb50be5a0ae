#pragma once

#include "control/json.h"
#include "control/steered_server.h"

#include <string>

namespace sim {

// Changes of a world from outside. Clients get the reports of these changes that they have asked for.
// The functions throw a Refusal when the server refuses the change, and another std::exception when the JSON
// is not as expected.

/// Carries out commands as if a client had sent them: `{"play": {"Channel": "A"}}`, or a list of these.
/// @return the answers to each command
Json run_commands (World &world, const Json &commands);

/// Changes a channel. Members are `clip` (null unloads), `position`, `speed` and `play`; all are optional.
void set_channel (World &world, int channel, const Json &wanted);

/// Creates or replaces a clip. The attributes are those of a line of the clips' file.
/// @throws Refusal when a clip of that name is loaded or precued on a channel
void set_clip (World &world, const std::string &name, const Json &attributes);
/// Deletes a clip, also a read-only one. @throws Refusal when it is loaded or precued on a channel
void drop_clip (World &world, const std::string &name);
Json clip_json (World &world, const std::string &name);
/// The names of clips after `after`, in order, at most `most` of them and never more than 10,000.
Json clip_names_json (World &world, const std::string &after, std::uint64_t most);

/// Sends a report. `body` is its contents, such as `{"temperature": {"Temperature10": 480}}`. It is sent to
/// the clients that have asked for its `kind`. With `channel`, this is a kind of channel report. With
/// `everyone`, it is sent to all clients.
void push_report (World &world, const Json &report);

/// Changes the clock. Members are `paused` and `rate`; both are optional.
void set_pace (SteeredServer &server, const Json &pace);
/// Lets a number of fields pass at once, the member `fields`.
void step (SteeredServer &server, const Json &step);

} // namespace sim
