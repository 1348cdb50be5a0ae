/**
 * @file orva/position.hpp
 * Positions and lengths in fields, and their conversion to frames, timecode and time.
 */
#ifndef ORVA_POSITION_HPP
#define ORVA_POSITION_HPP

#include "result.hpp"
#include "values.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orva {

/** Field rates of a server or a clip. */
enum class Rate : std::uint32_t {
  hz_60 = ORVA_FREQUENCY_60,
  hz_59_94 = ORVA_FREQUENCY_59_94,
  hz_50 = ORVA_FREQUENCY_50,
  hz_48 = ORVA_FREQUENCY_48,
  hz_47_95 = ORVA_FREQUENCY_47_95
};
/** Resolutions of a server. */
enum class Resolution : std::uint32_t {
  i1080 = ORVA_RESOLUTION_1080I,
  p720 = ORVA_RESOLUTION_720P,
  i625 = ORVA_RESOLUTION_625I,
  i525 = ORVA_RESOLUTION_525I
};
/** Video standards of a server or a clip. */
enum class Standard : std::uint32_t {
  i1080_60 = ORVA_STANDARD_1080_60I,
  i1080_59_94 = ORVA_STANDARD_1080_59_94I,
  i1080_50 = ORVA_STANDARD_1080_50I,
  i1080_48 = ORVA_STANDARD_1080_48I,
  i1080_47_95 = ORVA_STANDARD_1080_47_95I,
  p720_60 = ORVA_STANDARD_720_60P,
  p720_59_94 = ORVA_STANDARD_720_59_94P,
  p720_50 = ORVA_STANDARD_720_50P,
  i625_50 = ORVA_STANDARD_625_50I,
  i525_59_94 = ORVA_STANDARD_525_59_94I
};

/** Converts fields to timecode and time. */
class Timebase {
public:
  /**
   * @param rate how many fields pass in a second, two to a frame
   * @param drop_frame whether timecode leaves out frame numbers, so that it agrees with the clock. It has an
   *   effect at 59.94 only.
   * @param certain false when the server may run at another rate; see Video::timebase()
   */
  constexpr Timebase (Rate rate, bool drop_frame, bool certain = true)
      : rate_ (rate), drop_frame_ (drop_frame && rate == Rate::hz_59_94), certain_ (certain) {}
  /** With drop frame at 59.94, without it at other rates. */
  constexpr Timebase (Rate rate) : Timebase (rate, true) {}

  constexpr Rate rate () const { return rate_; }
  constexpr bool drop_frame () const { return drop_frame_; }
  /** False when the server may run at a rate that the library does not know. */
  constexpr bool certain () const { return certain_; }

  /** How many frames timecode counts in a second: 30, 25 or 24. */
  constexpr std::int64_t frames_per_second () const {
    return rate_ == Rate::hz_50 ? 25 : rate_ == Rate::hz_48 || rate_ == Rate::hz_47_95 ? 24 : 30;
  }
  /** How long a number of fields takes. */
  constexpr std::chrono::nanoseconds time (std::int64_t fields) const {
    const bool slow = rate_ == Rate::hz_59_94 || rate_ == Rate::hz_47_95;
    const std::int64_t rate = frames_per_second () * 2;
    const std::int64_t period = slow ? 1'001'000'000 : 1'000'000'000;
    return std::chrono::nanoseconds (fields / rate * period + fields % rate * period / rate);
  }

private:
  Rate rate_;
  bool drop_frame_;
  bool certain_;
};

/**
 * A count of fields, two to a frame: a position, a length, or the distance between two positions. A plain
 * number converts to it. Operations refuse a negative position, unless they take a distance.
 */
class Position {
public:
  constexpr Position () = default;
  template <class T, detail::if_number<T> = 0>
  constexpr Position (T fields) : fields_ (detail::wide_number (fields)) {}
  static constexpr Position from_frames (std::int64_t frames) { return Position (frames * 2); }

  /**
   * Reads a timecode such as "10:00:00:12". Drop frame has a ";" before the frames; a ":" is accepted too. A
   * ".5" at the end means the second field of the frame.
   * @return Kind::invalid for a text that is not a timecode, for a ";" without drop frame, for a frame number
   *   that the rate does not have, and for one that drop frame leaves out.
   */
  static result<Position> parse (std::string_view text, const Timebase &base);

  constexpr std::int64_t fields () const { return fields_; }
  /** Whole frames, rounded down. */
  constexpr std::int64_t frames () const { return (fields_ - (fields_ & 1)) / 2; }
  constexpr bool second_field () const { return (fields_ & 1) != 0; }
  /** Whether it can be sent as a position or length: 0 to 4294967295 fields. */
  constexpr bool valid () const { return fields_ >= 0 && fields_ <= 0xFFFFFFFF; }

  /** The timecode in the form that parse() reads. A negative distance begins with "-". Hours do not wrap. */
  std::string text (const Timebase &base) const;
  /** How long this number of fields takes. */
  constexpr std::chrono::nanoseconds time (const Timebase &base) const { return base.time (fields_); }

  friend constexpr Position operator+ (Position a, Position b) { return Position (a.fields_ + b.fields_); }
  friend constexpr Position operator- (Position a, Position b) { return Position (a.fields_ - b.fields_); }
  friend constexpr bool operator== (Position a, Position b) { return a.fields_ == b.fields_; }
  friend constexpr bool operator!= (Position a, Position b) { return a.fields_ != b.fields_; }
  friend constexpr bool operator<(Position a, Position b) { return a.fields_ < b.fields_; }
  friend constexpr bool operator> (Position a, Position b) { return b < a; }
  friend constexpr bool operator<= (Position a, Position b) { return !(b < a); }
  friend constexpr bool operator>= (Position a, Position b) { return !(a < b); }

private:
  std::int64_t fields_ = 0;
};

namespace detail {

/** Drop frame leaves out frame numbers 0 and 1 at the start of each minute, except every tenth minute. */
inline constexpr std::int64_t drop_frames_in_ten_minutes = 17982;
inline constexpr std::int64_t drop_frames_in_minute = 1798;

/** The number of a frame in timecode, with the numbers that drop frame leaves out. */
constexpr std::int64_t frame_number (std::int64_t frame, const Timebase &base) {
  if (!base.drop_frame ())
    return frame;
  const std::int64_t tens = frame / drop_frames_in_ten_minutes;
  const std::int64_t rest = frame % drop_frames_in_ten_minutes;
  return frame + tens * 18 + (rest < 1800 ? 0 : (rest - 1800) / drop_frames_in_minute * 2 + 2);
}

/** Removes at most `most` digits from the front of a text. @return their value, -1 when there are none */
inline std::int64_t take_number (std::string_view &text, std::size_t most) {
  std::int64_t value = 0;
  std::size_t count = 0;
  for (; count != most && count != text.size () && text[count] >= '0' && text[count] <= '9'; ++count)
    value = value * 10 + (text[count] - '0');
  text.remove_prefix (count);
  return count == 0 ? -1 : value;
}

/** Removes the first character of a text when it is one of these. @return whether it was */
inline bool take_one_of (std::string_view &text, std::string_view characters) {
  if (text.empty () || characters.find (text.front ()) == std::string_view::npos)
    return false;
  text.remove_prefix (1);
  return true;
}

inline std::string two_digits (std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string (number);
}

} // namespace detail

inline std::string Position::text (const Timebase &base) const {
  if (fields_ < 0)
    return "-" + Position (-fields_).text (base);
  const std::int64_t number = detail::frame_number (frames (), base);
  const std::int64_t seconds = number / base.frames_per_second ();
  return detail::two_digits (seconds / 3600) + ":" + detail::two_digits (seconds / 60 % 60) + ":" +
         detail::two_digits (seconds % 60) + (base.drop_frame () ? ";" : ":") +
         detail::two_digits (number % base.frames_per_second ()) + (second_field () ? ".5" : "");
}

inline result<Position> Position::parse (std::string_view text, const Timebase &base) {
  const Failure bad{Kind::invalid, "No timecode of this rate: " + std::string (text)};
  const std::int64_t hours = detail::take_number (text, 4);
  const bool first = detail::take_one_of (text, ":");
  const std::int64_t minutes = detail::take_number (text, 2);
  const bool second = detail::take_one_of (text, ":");
  const std::int64_t seconds = detail::take_number (text, 2);
  const bool third = detail::take_one_of (text, base.drop_frame () ? ":;" : ":");
  const std::int64_t frame = detail::take_number (text, 2);
  const bool half = text == ".5";
  if (!first || !second || !third || hours < 0 || minutes < 0 || minutes > 59 || seconds < 0 ||
      seconds > 59 || frame < 0 || frame >= base.frames_per_second () || !(half || text.empty ()))
    return bad;
  const std::int64_t all_minutes = hours * 60 + minutes;
  std::int64_t frames = (all_minutes * 60 + seconds) * base.frames_per_second () + frame;
  if (base.drop_frame ()) {
    if (minutes % 10 != 0 && seconds == 0 && frame < 2)
      return bad;
    frames -= 2 * (all_minutes - all_minutes / 10);
  }
  return Position (frames * 2 + (half ? 1 : 0));
}

/** The video format of a server. */
struct Video {
  Standard standard = Standard::i1080_60;
  Rate rate = Rate::hz_60;
  Resolution resolution = Resolution::i1080;

  /**
   * Whether `standard` is certainly the standard of the server. The library returns a standard that it does
   * not know, such as 4K or progressive 1080, as i1080_60. It also returns a rate that it does not know, such
   * as 29.97, as hz_60. So i1080_60 may be an unknown standard. It certainly is one when `rate` is not hz_60.
   */
  bool standard_certain () const { return standard != Standard::i1080_60; }
  /** Whether `rate` is certainly the rate of the server. */
  bool rate_certain () const { return standard_certain () || rate != Rate::hz_60; }
  /** The time base of this server, with drop frame at 59.94. Its certain() is rate_certain(). */
  Timebase timebase () const { return {rate, true, rate_certain ()}; }
};

} // namespace orva

#endif
