#pragma once

#include "world.h"

#include <string_view>
#include <unordered_map>

namespace sim {

using Handlers = std::unordered_map<std::string_view, Handler>;

void add_server_commands (Handlers &handlers);
void add_report_commands (Handlers &handlers);
void add_channel_commands (Handlers &handlers);

/// The number of a channel the server has. @throws Refusal for the others.
int channel_of (const Arguments &arguments);

/// The numbers of all channels in the set. @throws Refusal when the server lacks one of them.
std::set<int> channels_of (const Arguments &arguments);

} // namespace sim
