#include "values.h"
#include "words.h"

#include <charconv>
#include <cmath>

namespace orvactl {

std::optional<orva::Channel> channel_of (std::string_view text) {
  if (text.size () != 1)
    return {};
  const char c = text.front ();
  const orva::Channel channel = c >= '0' && c <= '9' ? orva::Channel (c - '0') : orva::Channel (c);
  return channel.valid () ? std::optional (channel) : std::nullopt;
}

namespace {

std::optional<orva::Channels> range_of (std::string_view text) {
  const std::size_t dash = text.find ('-');
  const auto first = channel_of (text.substr (0, dash));
  const auto last = dash == std::string_view::npos ? first : channel_of (text.substr (dash + 1));
  if (!first || !last || *last < *first)
    return {};
  orva::Channels all;
  for (std::uint32_t number = first->number (); number <= last->number (); ++number)
    all = all | orva::Channel (number);
  return all;
}

} // namespace

std::optional<orva::Channels> channels_of (std::string_view text) {
  if (text == "all")
    return orva::Channels::all ();
  orva::Channels set;
  for (std::size_t at = 0; at <= text.size ();) {
    const std::size_t end = std::min (text.find (',', at), text.size ());
    const auto more = range_of (text.substr (at, end - at));
    if (!more)
      return {};
    set = set | *more;
    at = end + 1;
  }
  return set;
}

std::string channels_text (orva::Channels channels) {
  std::string text;
  for (const orva::Channel channel : channels)
    text += (text.empty () ? "" : ",") + std::string (1, channel.letter ());
  return text;
}

std::optional<double> number_of (std::string_view text) {
  double number = 0;
  const auto [end, fault] = std::from_chars (text.data (), text.data () + text.size (), number);
  const bool whole = fault == std::errc () && end == text.data () + text.size ();
  return whole && std::isfinite (number) ? std::optional (number) : std::nullopt;
}

std::optional<std::uint64_t> count_of (std::string_view text) {
  std::uint64_t number = 0;
  const auto [end, fault] = std::from_chars (text.data (), text.data () + text.size (), number);
  return fault == std::errc () && end == text.data () + text.size () ? std::optional (number) : std::nullopt;
}

std::optional<orva::Limit> time_of (std::string_view text) {
  const std::size_t letters = std::min (text.find_first_of ("msh"), text.size ());
  const std::string_view unit = text.substr (letters);
  const double seconds = unit.empty () || unit == "s" ? 1
                         : unit == "ms"               ? 0.001
                         : unit == "m"                ? 60
                         : unit == "h"                ? 3600
                                                      : 0;
  const auto number = number_of (text.substr (0, letters));
  const double longest = 3600.0 * 24 * 365;
  if (!number || seconds == 0 || *number < 0 || *number * seconds > longest)
    return {};
  return orva::Limit (std::llround (*number * seconds * 1e9));
}

std::string time_text (orva::Limit time) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds> (time).count ();
  return ms % 1000 == 0 ? std::to_string (ms / 1000) + " s" : std::to_string (ms) + " ms";
}

orva::Position WrittenPosition::at (const orva::Timebase &base) const {
  if (fields)
    return *fields;
  const orva::Position position = orva::Position::parse (timecode, base).value ();
  return negative ? orva::Position (-position.fields ()) : position;
}

std::optional<WrittenPosition> written_position_of (std::string_view text, bool sign) {
  WrittenPosition written;
  if (sign && (text.starts_with ("-") || text.starts_with ("+"))) {
    written.negative = text.front () == '-';
    text.remove_prefix (1);
  }
  if (text.find (':') != std::string_view::npos) {
    if (text.find_first_not_of ("0123456789:;.") != std::string_view::npos)
      return {};
    written.timecode = text;
    return written;
  }
  const bool frames = text.ends_with ("f");
  const auto number = count_of (text.substr (0, text.size () - (frames ? 1 : 0)));
  if (!number || *number > 0xFFFFFFFF)
    return {};
  const auto fields = static_cast<std::int64_t> (*number) * (frames ? 2 : 1);
  written.fields = orva::Position (written.negative ? -fields : fields);
  return written;
}

std::optional<WrittenCondition> written_condition_of (std::string_view text) {
  const std::size_t first = text.find (' ');
  const auto channel = channel_of (text.substr (0, first));
  if (!channel || first == std::string_view::npos)
    return {};
  const std::string_view rest = text.substr (first + 1);
  const std::size_t second = rest.find (' ');
  if (second == std::string_view::npos) {
    const bool good = value_for (status_words, rest) || rest == "empty" || rest == "loaded";
    return good ? std::optional (WrittenCondition{*channel, std::string (rest)}) : std::nullopt;
  }
  WrittenCondition written{*channel, std::string (rest.substr (0, second)),
                           std::string (rest.substr (second + 1))};
  const bool clip = written.word == "clip" && !written.value.empty ();
  const bool at = written.word == "at" && written_position_of (written.value, false);
  return clip || at ? std::optional (written) : std::nullopt;
}

} // namespace orvactl
