#include "channels.h"

#include "vocabulary.h"
#include "writer.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::int64_t end_of_day = std::int64_t{5184000} << 16;

void write_timecode (Writer &out, std::string_view tag, const Standard &standard, std::uint32_t field) {
  out.open (tag).boolean ("Valid", true).text ("VideoStandard", standard.name);
  out.number ("FieldNumber", field).text ("DropFrameFlag", standard.drop_frame ? "df" : "ndf").close (tag);
}

} // namespace

void Channels::pass_field () {
  for (Channel &channel : channels_)
    if (channel.playing)
      channel.place = std::clamp<std::int64_t> (channel.place + channel.speed, 0, end_of_day);
}

std::string Channels::report_body (int number, int kind) const {
  const Channel &channel = channels_.at (static_cast<std::size_t> (number));
  const std::string_view name = word_at ("ChannelReportType", kind);
  Writer out;
  if (name == "status")
    out.open ("channel_status").word ("Channel", number);
  if (name == "status")
    out.text ("ChannelStatus", channel.playing ? "play" : "stop").close ("channel_status");
  if (name == "speed")
    out.open ("channel_speed").word ("Channel", number).fixed ("Speed", channel.playing ? channel.speed : 0);
  if (name == "speed")
    out.close ("channel_speed");
  if (name == "timecode") {
    out.open ("channel_timecode").word ("Channel", number).number ("ClipPosition", channel.position ());
    write_timecode (out, "DisplayTimecode", standard_, channel.position ());
    out.open ("InputTimecode").boolean ("Valid", false).close ("InputTimecode").close ("channel_timecode");
  }
  return out.take ();
}

} // namespace sim
