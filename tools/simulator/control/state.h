#pragma once

#include "control/json.h"
#include "control/steered_server.h"

namespace sim {

// What a server knows, as JSON.

Json channel_json (const World &world, int channel);
Json channels_json (const World &world);
/// The first of them, so many at most.
Json clients_json (SteeredServer &server, std::size_t most = SIZE_MAX);
Json time_json (const World &world);
Json faults_json (const Faults &faults);
Json journal_entry_json (const Journal::Entry &entry);
Json journal_report_json (const Journal::Report &report);
Json lists_json (const World &world);

/// All of it but the clips, of which there may be a million, and the journal.
/// Of the clients the first ones, so many at most.
Json state_json (SteeredServer &server, std::size_t most_clients = SIZE_MAX);

} // namespace sim
