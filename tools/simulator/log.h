#pragma once

#include <string_view>

namespace sim {

/// Writes one line with the time of day to the standard output. It never waits: a line that a full pipe
/// does not take at once is lost.
void log_line (std::string_view line);

/// Writes one line as it stands, and waits until it is taken.
void say (std::string_view line);

/// Writes one line about something that has gone wrong to the standard error.
void complain (std::string_view line);

} // namespace sim
