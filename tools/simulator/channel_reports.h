#pragma once

#include "deck.h"

#include <array>
#include <string>
#include <vector>

namespace sim {

class World;

/// The bodies that tell a client the present state of a channel, as one kind of report.
std::vector<std::string> present_bodies (const World &world, int channel, int kind);

/// The field number, with what it counts in. One that a timecode cannot hold is no valid timecode.
void write_timecode (Writer &out, std::string_view tag, const World &world, std::int64_t field,
                     bool drop_frame);
/// The timecode of the picture a channel shows.
void write_display_timecode (Writer &out, const World &world, int channel);

/// Remembers what was reported of each channel and finds out what is new.
class ChannelReporter {
public:
  /// The bodies that differ from what they were the last time, but not positions.
  std::vector<std::pair<int, std::string>> news (const World &world, int channel);

  /// Whether the position differs from the one this told of before.
  bool position_is_news (const World &world, int channel);

private:
  struct Reported {
    std::array<std::vector<std::string>, channel_report_count> bodies;
    std::string position;
  };
  std::array<Reported, channel_count> reported_;
};

} // namespace sim
