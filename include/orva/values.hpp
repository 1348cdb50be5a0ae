/**
 * @file orva/values.hpp
 * Arguments and results of operations: addresses, channels, numbers with a range, enumerations. Making a bad
 * value throws nothing. Each operation that gets a bad value fails and sends nothing.
 */
#ifndef ORVA_VALUES_HPP
#define ORVA_VALUES_HPP

#include "../orva.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace orva {

namespace detail {

/** Allows integer types except bool and char. */
template <class T>
using if_number = std::enable_if_t<
    std::is_integral<T>::value && !std::is_same<T, bool>::value && !std::is_same<T, char>::value, int>;

/** Converts to 64 bits with a sign. A number that is too large becomes the largest, which no range here
 * allows. */
template <class T>
constexpr std::int64_t wide_number (T number) {
  if constexpr (std::is_unsigned<T>::value && sizeof (T) == 8)
    return number > 0x7FFFFFFFFFFFFFFFu ? 0x7FFFFFFFFFFFFFFF : static_cast<std::int64_t> (number);
  else
    return static_cast<std::int64_t> (number);
}

} // namespace detail

/** The IPv4 address of a server. */
class Address {
public:
  /** @param number in host byte order: 127.0.0.1 is 0x7F000001 */
  constexpr Address (std::uint32_t number) : number_ (number) {}
  /** @param text four decimal numbers, as in "10.0.0.5" */
  Address (std::string_view text) { read (text); }
  Address (const char *text) : Address (std::string_view (text)) {}
  Address (const std::string &text) : Address (std::string_view (text)) {}

  /** False when the text was not an address. */
  constexpr bool valid () const { return valid_; }
  constexpr std::uint32_t number () const { return number_; }
  std::string text () const {
    std::string all;
    for (unsigned shift = 32; shift != 0;) {
      shift -= 8;
      all += std::to_string (number_ >> shift & 255) + (shift == 0 ? "" : ".");
    }
    return all;
  }
  friend constexpr bool operator== (Address a, Address b) { return a.number_ == b.number_; }
  friend constexpr bool operator!= (Address a, Address b) { return !(a == b); }
  friend constexpr bool operator<(Address a, Address b) { return a.number_ < b.number_; }

private:
  void read (std::string_view text) {
    unsigned parts = 0;
    for (std::size_t at = 0; parts != 4; ++parts) {
      std::uint32_t value = 0;
      const std::size_t start = at;
      for (; at != text.size () && text[at] >= '0' && text[at] <= '9' && at != start + 3; ++at)
        value = value * 10 + static_cast<std::uint32_t> (text[at] - '0');
      const bool last = parts == 3;
      const bool ends_well = last ? at == text.size () : at != text.size () && text[at] == '.';
      if (at == start || value > 255 || !ends_well)
        break;
      number_ = number_ << 8 | value;
      ++at;
    }
    valid_ = parts == 4;
    number_ = valid_ ? number_ : 0;
  }

  std::uint32_t number_ = 0;
  bool valid_ = true;
};

/** One channel of a server: a letter from A to H in upper or lower case, or a number from 0 to 7. */
class Channel {
public:
  constexpr Channel (char letter)
      : number_ (letter >= 'A' && letter <= 'H'   ? static_cast<std::uint8_t> (letter - 'A')
                 : letter >= 'a' && letter <= 'h' ? static_cast<std::uint8_t> (letter - 'a')
                                                  : bad) {}
  template <class T, detail::if_number<T> = 0>
  constexpr Channel (T number)
      : number_ (detail::wide_number (number) >= 0 && detail::wide_number (number) < 8
                     ? static_cast<std::uint8_t> (number)
                     : bad) {}

  constexpr bool valid () const { return number_ != bad; }
  /** 0 to 7 when the channel is valid. */
  constexpr std::uint32_t number () const { return number_; }
  /** 'A' to 'H', or '?' when the channel is not valid. */
  constexpr char letter () const { return valid () ? static_cast<char> ('A' + number_) : '?'; }
  friend constexpr bool operator== (Channel a, Channel b) { return a.number_ == b.number_; }
  friend constexpr bool operator!= (Channel a, Channel b) { return !(a == b); }
  friend constexpr bool operator<(Channel a, Channel b) { return a.number_ < b.number_; }

private:
  static constexpr std::uint8_t bad = 255;
  std::uint8_t number_;
};

/** The channels by name: orva::A to orva::H. */
inline namespace letters {
inline constexpr Channel A{'A'}, B{'B'}, C{'C'}, D{'D'}, E{'E'}, F{'F'}, G{'G'}, H{'H'};
}

/** A set of channels: `A | B`, `{A, B}` or Channels::all(). */
class Channels {
public:
  constexpr Channels () = default;
  constexpr Channels (Channel channel)
      : mask_ (channel.valid () ? 1u << channel.number () : 0), valid_ (channel.valid ()) {}
  constexpr Channels (std::initializer_list<Channel> channels) {
    for (const Channel channel : channels)
      *this = *this | channel;
  }
  static constexpr Channels all () { return {A, B, C, D, E, F, G, H}; }

  /** False when one of the channels was not valid. */
  constexpr bool valid () const { return valid_; }
  constexpr bool empty () const { return mask_ == 0; }
  constexpr bool contains (Channel channel) const {
    return channel.valid () && (mask_ >> channel.number () & 1) != 0;
  }
  /** Bit n is channel n. */
  constexpr std::uint32_t mask () const { return mask_; }

  constexpr Channels operator| (Channels other) const {
    Channels both;
    both.mask_ = mask_ | other.mask_;
    both.valid_ = valid_ && other.valid_;
    return both;
  }
  friend constexpr bool operator== (Channels a, Channels b) {
    return a.mask_ == b.mask_ && a.valid_ == b.valid_;
  }
  friend constexpr bool operator!= (Channels a, Channels b) { return !(a == b); }

  /** Visits the channels of the set from A to H. */
  class iterator {
  public:
    constexpr iterator (std::uint32_t mask, std::uint32_t number) : mask_ (mask), number_ (number) {
      settle ();
    }
    constexpr Channel operator* () const { return Channel (number_); }
    constexpr iterator &operator++ () {
      ++number_;
      settle ();
      return *this;
    }
    friend constexpr bool operator== (iterator a, iterator b) { return a.number_ == b.number_; }
    friend constexpr bool operator!= (iterator a, iterator b) { return !(a == b); }

  private:
    constexpr void settle () {
      while (number_ < 8 && (mask_ >> number_ & 1) == 0)
        ++number_;
    }
    std::uint32_t mask_;
    std::uint32_t number_;
  };
  constexpr iterator begin () const { return {mask_, 0}; }
  constexpr iterator end () const { return {mask_, 8}; }

private:
  std::uint32_t mask_ = 0;
  bool valid_ = true;
};

constexpr Channels operator| (Channel a, Channel b) {
  return Channels (a) | Channels (b);
}

/** A number from 0 to Greatest. */
template <std::int64_t Greatest>
class Bounded {
public:
  template <class T, detail::if_number<T> = 0>
  constexpr Bounded (T number) : number_ (detail::wide_number (number)) {}
  constexpr bool valid () const { return number_ >= 0 && number_ <= Greatest; }
  constexpr std::uint32_t number () const { return static_cast<std::uint32_t> (number_); }

private:
  std::int64_t number_;
};

/** A camera angle: 0 to 255. */
using Angle = Bounded<255>;
/** An element of a playlist: 0 to 65535. */
using Index = Bounded<65535>;

/** How a clip repeats. */
enum class Repeat : std::uint32_t {
  off = ORVA_REPEAT_OFF,
  loop = ORVA_REPEAT_LOOP,
  loop_to = ORVA_REPEAT_LOOP_TO,
  pingpong = ORVA_REPEAT_PINGPONG,
  pingpong_to = ORVA_REPEAT_PINGPONG_TO
};
/** When a precued clip follows. */
enum class When : std::uint32_t {
  activated = ORVA_PRECUE_EXPLICIT_SWITCH, /**< at precue_activate() */
  previous_stops = ORVA_PRECUE_PREVIOUS_STOPS,
  now = ORVA_PRECUE_IMMEDIATE,
  end_of_clip = ORVA_PRECUE_END_OF_CLIP
};
/** How the picture changes in a take. */
enum class Transition : std::uint32_t { cut = ORVA_TRANSITION_CUT, dissolve = ORVA_TRANSITION_DISSOLVE };
/** The speed after a take. */
enum class FollowSpeed : std::uint32_t {
  none = ORVA_FOLLOW_NONE,
  smart = ORVA_FOLLOW_SMART,
  one_x = ORVA_FOLLOW_ONE_X,
  follow = ORVA_FOLLOW_FOLLOW
};
/** Whether the server acts at its usual time or as early as it can. */
enum class Latency : std::uint32_t { normal = 0, least = 1 };
/** Whether the server or the caller decides when a channel shows its input. */
enum class InputMode : std::uint32_t { automatic = 0, manual = 1 };
/** How the fields of a clip are shown. */
enum class Playback : std::uint32_t { field = ORVA_PLAYBACK_FIELD, both_fields = ORVA_PLAYBACK_F12 };
/** Where a clip's timecode comes from. */
enum class TimecodeSource : std::uint32_t {
  zero_based = ORVA_TIMECODE_ZERO_BASED,
  striped = ORVA_TIMECODE_STRIPED,
  recorded = ORVA_TIMECODE_RECORDED,
  recorded_0_stripe = ORVA_TIMECODE_RECORDED_0_STRIPE
};
/** How a timecode counts. */
enum class Counting : std::uint32_t { drop_frame = ORVA_DROP_FRAME, non_drop_frame = ORVA_NON_DROP_FRAME };
/** What a store is for. */
enum class StoreMode : std::uint32_t {
  read = ORVA_STORE_READ,
  read_write = ORVA_STORE_READ_WRITE,
  write = ORVA_STORE_WRITE
};
/** What a channel does. */
enum class Status : std::uint32_t {
  none = ORVA_CHANNEL_NONE,       /**< no channel, a time delay, or a status that the library does not know */
  stopped = ORVA_CHANNEL_STOPPED, /**< idle, stopped or showing a test pattern */
  cueing = ORVA_CHANNEL_CUEING,
  playing = ORVA_CHANNEL_PLAYING,
  recording = ORVA_CHANNEL_RECORDING /**< recording, or inserting */
};

/** A set of tracks of a clip. Timecode belongs to video. */
enum class Tracks : std::uint32_t { none = 0, video = 1, key = 2, audio = 4, all = 7 };
/**
 * The tracks of an insert edit, or of the input that a channel shows. They are groups of bits of the server's
 * edit mask: bit 4, bit 5, and all other bits together.
 */
enum class EditTracks : std::uint32_t { none = 0, bit_4 = 1, bit_5 = 2, others = 4, all = 7 };

constexpr Tracks operator| (Tracks a, Tracks b) {
  return static_cast<Tracks> (static_cast<std::uint32_t> (a) | static_cast<std::uint32_t> (b));
}
constexpr Tracks operator& (Tracks a, Tracks b) {
  return static_cast<Tracks> (static_cast<std::uint32_t> (a) & static_cast<std::uint32_t> (b));
}
constexpr EditTracks operator| (EditTracks a, EditTracks b) {
  return static_cast<EditTracks> (static_cast<std::uint32_t> (a) | static_cast<std::uint32_t> (b));
}
constexpr EditTracks operator& (EditTracks a, EditTracks b) {
  return static_cast<EditTracks> (static_cast<std::uint32_t> (a) & static_cast<std::uint32_t> (b));
}

/** The name of a status, for example "playing". */
constexpr const char *name_of (Status status) {
  switch (status) {
  case Status::none:
    return "none";
  case Status::stopped:
    return "stopped";
  case Status::cueing:
    return "cueing";
  case Status::playing:
    return "playing";
  case Status::recording:
    return "recording";
  }
  return "?";
}

namespace detail {

constexpr std::uint32_t greatest (Repeat) {
  return 4;
}
constexpr std::uint32_t greatest (When) {
  return 3;
}
constexpr std::uint32_t greatest (Transition) {
  return 1;
}
constexpr std::uint32_t greatest (FollowSpeed) {
  return 3;
}
constexpr std::uint32_t greatest (Latency) {
  return 1;
}
constexpr std::uint32_t greatest (InputMode) {
  return 1;
}
constexpr std::uint32_t greatest (Playback) {
  return 1;
}
constexpr std::uint32_t greatest (TimecodeSource) {
  return 3;
}
constexpr std::uint32_t greatest (Counting) {
  return 1;
}
constexpr std::uint32_t greatest (StoreMode) {
  return 3;
}
constexpr std::uint32_t greatest (Tracks) {
  return 7;
}
constexpr std::uint32_t greatest (EditTracks) {
  return 7;
}

} // namespace detail

} // namespace orva

#endif
