#pragma once

#include "player.h"

#include <array>
#include <string>
#include <vector>

namespace sim {

class World;

/// Returns the bodies that report the present state of a channel, for one kind of report.
std::vector<std::string> present_bodies (const World &world, int channel, int kind);

/// Writes a field number as a timecode with its standard. When no timecode can hold the number, the timecode
/// is marked as not valid.
void write_timecode (Writer &out, std::string_view tag, const World &world, std::int64_t field,
                     bool drop_frame);
/// Writes the timecode of the picture that a channel shows.
void write_display_timecode (Writer &out, const World &world, int channel);

/// Keeps the last reports of each channel and finds those that have changed.
class ChannelReporter {
public:
  /// Returns the kinds and bodies of the reports that differ from those of the last call, without positions.
  std::vector<std::pair<int, std::string>> news (const World &world, int channel);

  /// Whether the position differs from that of the last call.
  bool position_is_news (const World &world, int channel);

private:
  struct Reported {
    std::array<std::vector<std::string>, channel_report_count> bodies;
    std::string position;
  };
  std::array<Reported, channel_count> reported_;
};

} // namespace sim
