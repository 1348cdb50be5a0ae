#pragma once

#include "engine/commands.h"

#include <initializer_list>

/// What the lines of commands_golden.inc use beside the commands: sets by their members, in this order.
namespace golden {

template <class Set>
Set set_of (std::initializer_list<uint32_t> values) {
  return Set (values.begin (), static_cast<uint32_t> (values.size ()));
}
constexpr auto channels = set_of<QUILL3::ChannelSet>;
constexpr auto reports = set_of<QUILL3::ReportSet>;
constexpr auto channel_reports = set_of<QUILL3::ChannelReportSet>;
constexpr auto tracks = set_of<QUILL3::TrackSet>;

} // namespace golden
