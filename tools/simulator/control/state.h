#pragma once

#include "control/json.h"
#include "control/steered_server.h"

namespace sim {

// The state of a server as JSON.

Json channel_json (const World &world, int channel);
Json channels_json (const World &world);
/// The first connections, at most `most` of them.
Json clients_json (SteeredServer &server, std::size_t most = SIZE_MAX);
Json time_json (const World &world);
Json faults_json (const Faults &faults);
Json journal_entry_json (const Journal::Entry &entry);
Json journal_report_json (const Journal::Report &report);
Json lists_json (const World &world);

/// The whole state except the journal and the clips, of which there may be a million. Has at most
/// `most_clients` connections.
Json state_json (SteeredServer &server, std::size_t most_clients = SIZE_MAX);

} // namespace sim
