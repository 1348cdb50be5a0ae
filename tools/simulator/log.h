#pragma once

#include <string_view>

namespace sim {

/// Writes one line with the time of day to the standard output. It never waits: when a pipe is full, the line
/// is left out, and the next line is preceded by the number of lines that are missing. A line of more than
/// 4000 bytes is shortened in its middle.
void log_line (std::string_view line);

/// Writes one line without a time to the standard output, and waits until it is written.
void print_line (std::string_view line);

/// Writes one line about something that has gone wrong to the standard error.
void print_error (std::string_view line);

} // namespace sim
