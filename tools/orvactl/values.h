#pragma once

#include <orva.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace orvactl {

// Values on the command line. A function returns nothing for a text that is no such value.

/// A set such as "A", "0", "A,C-E" or "all". Never empty.
std::optional<orva::Channels> channels_of (std::string_view text);
/// One channel, as a letter or a number from 0 to 7.
std::optional<orva::Channel> channel_of (std::string_view text);
/// "A,C,D", the channels of a set.
std::string channels_text (orva::Channels channels);

std::optional<double> number_of (std::string_view text);
std::optional<std::uint64_t> count_of (std::string_view text);
/// "10s", "500ms", "2m", "1h"; a number alone is seconds.
std::optional<orva::Limit> time_of (std::string_view text);
/// The same as text for people, such as "5 s" or "500 ms".
std::string time_text (orva::Limit time);

/// A position or a distance as it was written: a number of fields, or a timecode that only a time base can
/// turn into fields.
struct WrittenPosition {
  std::optional<orva::Position> fields{};
  std::string timecode{}; ///< without its sign
  bool negative = false;

  /// @throws orva::invalid for a timecode that the time base does not have
  orva::Position at (const orva::Timebase &base) const;
};
/// "250" fields, "125f" frames or a timecode such as "10:00:00:12", each with a sign where `sign` allows it.
std::optional<WrittenPosition> written_position_of (std::string_view text, bool sign);

/// A condition of a channel: its channel, a word, and what the word needs.
struct WrittenCondition {
  orva::Channel channel;
  std::string word;
  std::string value{};
};
/// "A stopped" or another status, "A empty", "A loaded", "A clip NAME" or "A at POSITION".
std::optional<WrittenCondition> written_condition_of (std::string_view text);

} // namespace orvactl
