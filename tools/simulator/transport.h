#pragma once

#include "values.h"
#include "words.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace sim {

enum class Source { nothing, clip, vclip, live };

/// What can be loaded on a channel: a clip, a virtual clip or the live input.
struct Content {
  Source source = Source::nothing;
  std::string name;
  std::uint32_t length = 0; ///< fields
  int angles = 1;
  int audio_tracks = 0;
  int interp = 0;
  int playback = 0;
  int loop = loop_off;
  std::uint32_t loop_in = 0;
  std::uint32_t loop_out = 0;
  std::int64_t first_field = 0; ///< timecode of its first field
  bool drop_frame = false;
};

/// Content, and how to show it.
struct Cue {
  Content content;
  std::uint32_t in = 0;
  std::optional<std::uint32_t> out; ///< the last field to show; absent: that of the content
  int angle = 0;
  int loop = loop_off;
  int playback = 0;
  std::uint32_t loop_in = 0;
  std::optional<std::uint32_t> loop_out; ///< the last field of the loop; absent: that of the content
};

struct Precued {
  Cue cue;
  int condition = precue_explicit;
};

/// A recording whose new length is not yet stored in the clip.
struct Recording {
  std::string clip;
  std::uint32_t length = 0;
  std::uint32_t stored_length = 0;
  bool was_refused = false; ///< storing it failed when it ended

  std::uint32_t growth () const { return length - stored_length; }
};

/// The transport of one channel: position, speed, loops, recording and precued clips. It does not use other
/// channels or stored clips. Positions are counted in fields. Both ends of a range belong to it.
class Transport {
public:
  bool loaded () const { return cue.content.source != Source::nothing; }
  std::uint32_t position () const { return static_cast<std::uint32_t> (place_ >> 16); }
  /// The last field of the loaded content; 0 when it has no fields.
  std::uint32_t last_field () const;
  bool playing () const { return playing_; }
  bool recording () const;
  int status () const;
  /// The present speed, negative for the way back of a ping-pong; 0 when the channel does not move.
  Fixed speed () const;
  /// The same, but while the channel is cueing the speed that it will have after that.
  Fixed speed_when_cued () const;
  bool in_transition () const { return transition_left_ > 0; }

  /// Loads a cue and shows its first field one field later. Clears the edit mask: a new clip is not recorded
  /// until a client sets the mask again.
  void load (const Cue &what);
  /// Ends the cueing at once. Used when clips change on air.
  void skip_cueing () { cueing_left_ = 0; }
  void unload ();
  /// Applies a change of the loaded clip, for example of its length. What was recorded before counts as
  /// stored, and a recording that runs starts again from there.
  void renew (const Content &content);
  void play (Fixed speed);
  void stop ();
  /// Goes to a field, or to the last field when it is beyond the end. Stops the channel.
  void go_to (std::uint32_t field);
  /// Moves by a number of fields, at most to an end of the content. Stops the channel.
  void jog (std::int32_t distance);
  void start_transition (std::uint32_t fields) { transition_left_ = fields; }

  /// Lets one field pass. @return whether the channel has reached the end of what it plays
  bool pass_field ();

  Cue cue;
  std::deque<Precued> precued;
  int edit_mask = 0; ///< tracks that are recorded while it plays
  int ee_mask = 0;
  bool auto_ee = true;
  std::optional<Recording> unstored; ///< what has been recorded but not yet stored

private:
  struct Range {
    std::int64_t low;  ///< the first position
    std::int64_t high; ///< the position after the last
  };
  Range fields (std::uint32_t first, std::uint32_t last) const;
  Range loop_range () const;
  bool move ();
  bool move_in_loop (std::int64_t next, Range whole);
  bool loops () const;
  bool enters_freely () const;
  void wrap (std::int64_t next, Range range);
  void reflect (std::int64_t next, Range range);
  bool record (std::int64_t next);
  std::int64_t behind_out () const;

  std::int64_t place_ = 0; ///< in fields, with 16 fractional bits
  Fixed speed_ = fixed_one;
  bool playing_ = false;
  bool backwards_ = false; ///< on the way back of a ping-pong
  int cueing_left_ = 0;    ///< fields until the cue is done
  std::uint32_t transition_left_ = 0;
};

} // namespace sim
