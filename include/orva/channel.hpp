/**
 * @file orva/channel.hpp
 * Operations on one channel, and on a set of channels on the same field.
 */
#ifndef ORVA_CHANNEL_HPP
#define ORVA_CHANNEL_HPP

#include "call.hpp"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orva {

/** How load() loads a clip. The server decides about each member without a value; load() names the
 * exceptions. */
struct Load {
  std::optional<Repeat> repeat{};          /**< not together with angle */
  std::optional<Position> position{};      /**< the field to go to */
  std::optional<Position> loop_in{};       /**< start of the loop; not together with angle */
  std::optional<Position> clip_position{}; /**< the clip position of the command; 0 is none */
  std::optional<Angle> angle{};            /**< the camera angle */
};

/** How precue() prepares a clip. */
struct Precue {
  When when = When::activated;
  std::optional<Position> position{}; /**< the first field */
  std::optional<Position> length{};   /**< how much of the clip to play */
  std::optional<Position> loop_in{};  /**< start of the loop; repeating is switched off */
};

/** How take() changes the picture. */
struct Take {
  Transition transition = Transition::cut;
  Position duration{}; /**< of the transition */
  std::optional<FollowSpeed> follow{};
};

/** What go_live() shows. The server decides about each member without a value. */
struct Live {
  std::optional<std::string> clip{};
  std::optional<Angle> angle{};
};

/** The clip that record() creates. */
struct Record {
  Tracks tracks = Tracks::all;
  Position length{}; /**< sent as the length of the new clip */
};

/** The part of its input that a channel shows. */
struct Input {
  EditTracks tracks = EditTracks::none;
  InputMode mode = InputMode::automatic;
  friend bool operator== (Input a, Input b) { return a.tracks == b.tracks && a.mode == b.mode; }
  friend bool operator!= (Input a, Input b) { return !(a == b); }
};

/** Everything that the server has reported about a channel. The values may be from different moments. */
struct ChannelState {
  std::string clip; /**< empty when no clip is loaded */
  Status status = Status::none;
  Position position;
  Position length;    /**< of the clip; 0 when the server left it out */
  Position remaining; /**< from the position to the end of the clip; 0 without a length */
  double speed = 0;   /**< 1.0 is normal forward play */
  Repeat repeat = Repeat::off;
  std::uint32_t angle = 0;
  std::uint32_t angle_count = 1;
  Input input;                     /**< the part of its input that the channel shows */
  std::uint32_t precued = 0;       /**< the number of precued clips */
  std::chrono::nanoseconds age{0}; /**< time since the link was last seen up; 0 while it is up */
};

namespace detail {

struct ChannelData {
  Context context;
  Channel target;
  static constexpr bool gang = false;
};
struct GangData {
  Context context;
  Channels target;
  static constexpr bool gang = true;
};

// Values that the server reports about a channel. The first read costs a round trip, later reads send
// nothing.

inline void read_clip (std::uint32_t server, std::uint32_t channel, ChannelState &state) {
  must (read_text ([=] (OrvaStringBuffer text) { return orva_channel_clip (server, channel, text); },
                   state.clip));
}
inline void read_status (std::uint32_t server, std::uint32_t channel, ChannelState &state) {
  std::uint32_t status = 0;
  must (orva_channel_status (server, channel, &status));
  state.status = static_cast<Status> (status);
}
inline void read_position (std::uint32_t server, std::uint32_t channel, ChannelState &state) {
  std::uint32_t position = 0;
  must (orva_channel_position (server, channel, &position));
  state.position = position;
}
inline void read_speed (std::uint32_t server, std::uint32_t channel, ChannelState &state) {
  must (orva_channel_speed (server, channel, &state.speed));
}
/** The values that the server reports together. */
inline void read_information (std::uint32_t server, std::uint32_t channel, ChannelState &state) {
  std::uint32_t length = 0, repeat = 0, tracks = 0, mode = 0;
  must (orva_channel_clip_length (server, channel, &length));
  must (orva_channel_precue_count (server, channel, &state.precued));
  must (orva_channel_repeat (server, channel, &repeat));
  must (orva_channel_angle (server, channel, &state.angle, &state.angle_count));
  must (orva_channel_ee (server, channel, &tracks, &mode));
  state.length = length;
  state.repeat = static_cast<Repeat> (repeat);
  state.input = {static_cast<EditTracks> (tracks), static_cast<InputMode> (mode)};
}

inline result<ChannelState> read_state (const Context &context, Channel channel) {
  const std::uint32_t bit = 1u << channel.number ();
  const std::shared_ptr<Core> &core = context.core;
  const auto read = [core, bit, channel] (std::uint32_t server, ChannelState &state) -> std::uint32_t {
    read_clip (server, channel.number (), state);
    read_status (server, channel.number (), state);
    read_position (server, channel.number (), state);
    read_speed (server, channel.number (), state);
    read_information (server, channel.number (), state);
    state.remaining = state.length > state.position ? state.length - state.position : Position ();
    state.age = core->age ();
    core->known_channels |= bit;
    return ORVA_OK;
  };
  if ((core->known_channels & bit) != 0)
    return attempt<ChannelState> (core->connection (), false, read);
  return perform<ChannelState> (context, true, read);
}

} // namespace detail

/**
 * The operations that a channel and a set of channels both have. The channels of a set act on the same field.
 * When one of them cannot, none of them acts. Each operation here is one command and one round trip.
 */
template <template <class> class Group, class Form, class Data>
class Transport : public Operations<Group, Form, Data> {
  using Base = Operations<Group, Form, Data>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  /** Starts at the speed that the server chooses. */
  of<void> play () const { return both (orva_cmd_play1, orva_cmd_gang_play1); }
  /** Starts at a speed. 1.0 is normal, 0.0 is a still, a negative speed plays backwards. It is limited to
   * -200 to 200. */
  of<void> play (double speed, Latency latency = Latency::normal) const {
    return latency == Latency::normal ? both (orva_cmd_play2, orva_cmd_gang_play2, speed)
                                      : both (orva_cmd_play3, orva_cmd_gang_play3, speed, latency);
  }
  /** Stops. */
  of<void> stop (Latency latency = Latency::normal) const {
    return latency == Latency::normal ? both (orva_cmd_stop1, orva_cmd_gang_stop1)
                                      : both (orva_cmd_stop2, orva_cmd_gang_stop2, latency);
  }
  /** Moves by a distance. A negative distance moves backwards. */
  of<void> jog (Position distance, Latency latency = Latency::normal) const {
    const detail::Distance fields{distance};
    return latency == Latency::normal ? both (orva_jog1, orva_gang_jog1, fields)
                                      : both (orva_jog2, orva_gang_jog2, fields, latency);
  }
  /** Moves to a position. */
  of<void> go_to (Position position, Latency latency = Latency::normal) const {
    return latency == Latency::normal ? both (orva_goto1, orva_gang_goto1, position)
                                      : both (orva_goto2, orva_gang_goto2, position, latency);
  }
  /** Switches to the precued clip. */
  of<void> precue_activate () const { return both (orva_precue_activate1, orva_gang_precue_activate1); }

  /**
   * Starts an insert edit of the loaded clip: from now on, playing records into it. EditTracks::none ends the
   * edit. To record a new clip, use record() of a channel.
   */
  of<void> edit (EditTracks tracks = EditTracks::all) const {
    if (tracks == EditTracks::all)
      return both (orva_edit_all_on, orva_gang_edit_all_on);
    if (tracks == EditTracks::none)
      return both (orva_edit_all_off, orva_gang_edit_all_off);
    return both (orva_edit1, orva_gang_edit1, tracks);
  }
  /** Selects the part of its input that the channel shows. */
  of<void> show_input (EditTracks tracks = EditTracks::all, InputMode mode = InputMode::automatic) const {
    if (tracks == EditTracks::all && mode == InputMode::automatic)
      return both (orva_ee_all_on, orva_gang_ee_all_on);
    if (tracks == EditTracks::none && mode == InputMode::automatic)
      return both (orva_ee_all_off, orva_gang_ee_all_off);
    return both (orva_ee1, orva_gang_ee1, tracks, mode);
  }

private:
  template <class One, class Many, class... Arguments>
  of<void> both (One one, Many many, const Arguments &...arguments) const {
    (void)one;
    (void)many;
    if constexpr (Data::gang)
      return this->send (many, this->data_.target, arguments...);
    else
      return this->send (one, this->data_.target, arguments...);
  }
};

/** Operations on several channels at once: `server.channels (orva::A | orva::B).play (1.0)`. */
template <class Form>
class GangControl : public Transport<GangControl, Form, detail::GangData> {
public:
  using Transport<GangControl, Form, detail::GangData>::Transport;
};

/** Operations on one channel: `server.channel (orva::A).play (1.0)`. */
template <class Form>
class ChannelControl : public Transport<ChannelControl, Form, detail::ChannelData> {
  using Base = Transport<ChannelControl, Form, detail::ChannelData>;

public:
  using Base::Base;
  template <class T>
  using of = typename Base::template of<T>;

  // --- Loading and recording

  /**
   * Loads a clip. A repeat mode or a loop-in point together with an angle is Kind::invalid. Without an angle,
   * a position, loop-in point or clip position is sent with a repeat mode: Repeat::off when none is given. A
   * loop-in point or clip position is sent with all other positions of its command: 0 for each that is not
   * given.
   */
  of<void> load (std::string_view clip, const Load &how = {}) const {
    if (how.angle && (how.repeat || how.loop_in))
      return this->template fail<void> (
          "A clip is loaded with an angle or with a repeat mode, not with both");
    const Position position = how.position.value_or (0);
    const Position clip_position = how.clip_position.value_or (0);
    if (how.angle && how.clip_position)
      return on (orva_cmd_loadclip7, clip, *how.angle, position, clip_position);
    if (how.angle && how.position)
      return on (orva_cmd_loadclip6, clip, *how.angle, position);
    if (how.angle)
      return on (orva_cmd_loadclip5, clip, *how.angle);
    const Repeat repeat = how.repeat.value_or (Repeat::off);
    if (how.loop_in || how.clip_position)
      return on (orva_cmd_loadclip4, clip, repeat, position, how.loop_in.value_or (0), clip_position);
    if (how.position)
      return on (orva_cmd_loadclip3, clip, repeat, position);
    if (how.repeat)
      return on (orva_cmd_loadclip2, clip, repeat);
    return on (orva_cmd_loadclip1, clip);
  }
  /** The same as load(). The channel shows the clip at its position, ready to play. */
  of<void> cue (std::string_view clip, const Load &how = {}) const { return load (clip, how); }

  /** Loads a virtual clip. Only `repeat` and `position` may have a value. A position without a repeat mode
   * sends Repeat::off. */
  of<void> load_virtual (std::string_view vclip, const Load &how = {}) const {
    if (how.angle || how.loop_in || how.clip_position)
      return this->template fail<void> ("A virtual clip is loaded with a repeat mode and a position only");
    if (how.position)
      return on (orva_cmd_load_vclip3, vclip, how.repeat.value_or (Repeat::off), *how.position);
    if (how.repeat)
      return on (orva_cmd_load_vclip2, vclip, *how.repeat);
    return on (orva_cmd_load_vclip1, vclip);
  }

  /** Empties the channel. */
  of<void> unload () const { return on (orva_unload_channel); }

  /**
   * Records a new clip. Creates the clip for the channel, starts an insert edit of all tracks, and plays at
   * normal speed. These are three commands. When one fails, the commands before it are not undone.
   * end_recording() ends the recording.
   * @param clip a name that no clip has yet
   */
  of<void> record (std::string_view clip, const Record &how = {}) const {
    const auto operation = [] (std::uint32_t server, std::uint32_t channel, const orva_char *name,
                               std::uint32_t tracks, std::uint32_t length) -> std::uint32_t {
      detail::must (orva_create_clip3 (server, channel, name, tracks, length));
      detail::must (orva_edit_all_on (server, channel));
      return orva_cmd_play2 (server, channel, 1.0);
    };
    return this->template ask<void> (operation, this->data_.target, clip, how.tracks, how.length);
  }
  /** Stops the channel and then ends the insert edit, with two commands. */
  of<void> end_recording () const {
    const auto operation = [] (std::uint32_t server, std::uint32_t channel) -> std::uint32_t {
      detail::must (orva_cmd_stop1 (server, channel));
      return orva_edit_all_off (server, channel);
    };
    return this->template ask<void> (operation, this->data_.target);
  }

  // --- Clips that follow, takes

  /** Prepares a clip that follows the one on the channel. A position without a value is sent as 0 when there
   * is a length or a loop-in point; so is a length when there is a loop-in point. */
  of<void> precue (std::string_view clip, const Precue &how = {}) const {
    const Position position = how.position.value_or (0);
    if (how.loop_in)
      return on (orva_precue4, clip, how.when, position, *how.loop_in, how.length.value_or (0));
    if (how.length)
      return on (orva_precue3, clip, how.when, position, *how.length);
    if (how.position)
      return on (orva_precue2, clip, how.when, position);
    return on (orva_precue1, clip, how.when);
  }
  /** Removes all precued clips. */
  of<void> precue_clear () const { return on (orva_precue_clear1); }
  /** Takes the next clip. */
  of<void> take (const Take &how = {}) const {
    return how.follow ? on (orva_take2, how.transition, how.duration, *how.follow)
                      : on (orva_take1, how.transition, how.duration);
  }
  /** Goes live as early as possible. */
  of<void> go_live (const Live &what = {}) const {
    const std::string_view clip = what.clip ? std::string_view (*what.clip) : std::string_view ();
    if (what.clip && what.angle)
      return on (orva_go_live4, clip, *what.angle);
    if (what.clip)
      return on (orva_go_live3, clip);
    return what.angle ? on (orva_go_live2, *what.angle) : on (orva_go_live1);
  }

  // --- Settings of the channel

  /** Changes the camera angle. */
  of<void> set_angle (Angle angle) const { return on (orva_angle1, angle); }
  /** Sets the out point. */
  of<void> set_out (Position position) const { return on (orva_set_out1, position); }
  /** Removes the out point. */
  of<void> clear_out () const { return on (orva_clear_out); }
  /** Sets how the clip on the channel repeats. */
  of<void> set_repeat (Repeat repeat) const { return on (orva_set_repeat, repeat); }

  // --- Playlists that the server holds

  /** Plays an element of the channel's list now. The first one has the index 0. */
  of<void> playlist_play_now (Index index) const { return on (orva_cmd_playlist_play_now, index); }
  /** Plays an element after the one that is on air. */
  of<void> playlist_play_next (Index index) const { return on (orva_cmd_playlist_play_next, index); }
  /** Cues an element now, without playing it. */
  of<void> playlist_cue_now (Index index) const { return on (orva_cmd_playlist_cue_now, index); }
  /** Cues an element after the one that is on air. */
  of<void> playlist_cue_next (Index index) const { return on (orva_cmd_playlist_cue_next, index); }
  /** Cues the list at its first element. */
  of<void> playlist_cue () const { return on (orva_cmd_playlist_cue_list); }
  /** Would return whether a list is loaded. In this version of the library it fails with Kind::timed_out,
   * after 6 s at most. */
  of<bool> playlist_loaded () const {
    const auto operation = [] (std::uint32_t server, bool &loaded, std::uint32_t channel) {
      std::uint32_t number = 0;
      const std::uint32_t code = orva_playlist_status (server, channel, &number);
      loaded = number != 0;
      return code;
    };
    return this->template ask<bool> (operation, this->data_.target);
  }
  /** Would return the number of elements of the list. Fails like playlist_loaded(). */
  of<std::uint32_t> playlist_count () const {
    const auto operation = [] (std::uint32_t server, std::uint32_t &count, std::uint32_t channel) {
      return orva_playlist_count (server, channel, &count);
    };
    return this->template ask<std::uint32_t> (operation, this->data_.target);
  }

  // --- State

  /**
   * Returns everything that the server has reported about the channel. The first call asks the server to
   * report. It costs five round trips and waits up to 6 s for each first value. Later calls send nothing and
   * do not wait. While the link is down they return the last values, and `age` is not 0.
   */
  of<ChannelState> state () const {
    if (!this->data_.target.valid ())
      return this->template fail<ChannelState> (detail::checked (this->data_.target).bad ());
    return this->template deliver<ChannelState> (
        [data = this->data_] { return detail::read_state (data.context, data.target); });
  }

  /**
   * Waits until the channel's state satisfies a condition, and returns that state. Use it to wait for the
   * effect of a command, which the server reports after its answer. The condition must be false before the
   * command, because the wait may begin with the old state.
   * @param condition takes a ChannelState and returns bool. It is called on the thread that waits. This call
   *   throws what the condition throws, in the nothrow form too. In the async form it becomes Kind::internal.
   * @param limit replaces the limit of these operations. When it has passed, the call fails with
   *   Kind::timed_out.
   * @return Kind::link_lost when the link is down and the last state does not satisfy the condition
   */
  template <class Condition>
  of<ChannelState> wait_until (Condition condition, std::optional<Limit> limit = {}) const {
    if (!this->data_.target.valid ())
      return this->template fail<ChannelState> (detail::checked (this->data_.target).bad ());
    detail::ChannelData data = this->data_;
    if (limit)
      data.context.own_limit = limit;
    return this->template deliver<ChannelState> ([data, condition] () mutable -> result<ChannelState> {
      const detail::Deadline deadline (data.context.limit ());
      return detail::look_until<ChannelState> (data.context, [&] () -> std::optional<result<ChannelState>> {
        detail::Context within = data.context;
        within.own_limit = deadline.left ();
        result<ChannelState> state = detail::read_state (within, data.target);
        if (!state || condition (*state))
          return state;
        if (state->age.count () != 0)
          return Failure{Kind::link_lost, "The link was lost while waiting"};
        return {};
      });
    });
  }
  /** Waits until the channel has a status. Otherwise the same as wait_until(). */
  of<ChannelState> wait_for (Status status, std::optional<Limit> limit = {}) const {
    return wait_until ([status] (const ChannelState &state) { return state.status == status; }, limit);
  }

private:
  template <class F, class... Arguments>
  of<void> on (F function, const Arguments &...arguments) const {
    return this->send (function, this->data_.target, arguments...);
  }
};

} // namespace orva

#endif
