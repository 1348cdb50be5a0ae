#pragma once

#include "world.h"

#include <string_view>
#include <unordered_map>

namespace sim {

using Handlers = std::unordered_map<std::string_view, Handler>;

void add_server_commands (Handlers &handlers);
void add_report_commands (Handlers &handlers);
void add_transport_commands (Handlers &handlers);
void add_cue_commands (Handlers &handlers);
void add_clip_commands (Handlers &handlers);
void add_vclip_commands (Handlers &handlers);
void add_list_commands (Handlers &handlers);
void add_listplay_commands (Handlers &handlers);
void add_metadata_commands (Handlers &handlers);
void add_dictionary_commands (Handlers &handlers);

/// The number of the channel that a command names. @throws Refusal when the server does not have it.
int channel_of (const Arguments &arguments);

/// The numbers of all channels in the set. @throws Refusal when the server does not have one of them.
std::set<int> channels_of (const Arguments &arguments);

/// Reports the value of a key of the user dictionary to everyone who watches it.
void report_key (World &world, const std::string &key, const std::string &value);

} // namespace sim
