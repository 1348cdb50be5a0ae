#pragma once

#include "items.h"
#include "transport.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

inline constexpr int channel_count = 8;

/// A list that is loaded on a channel: a copy of the stored one, which can be changed and played.
struct LoadedList {
  std::string id;
  int mode = list_single;
  std::optional<Transition> transition; ///< for items that have none of their own
  std::vector<Item> items;
  std::optional<std::size_t> now, next;
  bool next_only_cued = false; ///< the next item is cued and not played
  int loop = loop_off;
  bool modified = false;
  std::optional<Item> bed; ///< item that is repeated after the end of the list
};

/// Who has taken a channel for transfers.
struct Steal {
  int status = steal_available;
  int client = 0;
  std::string name;
};

/// One channel of the server: its transport, its lists and who has taken it for transfers.
struct Player : Transport {
  std::optional<LoadedList> list;
  std::optional<LoadedList> chase;
  std::optional<int> preview; ///< the channel that shows the next item

  Steal steal;

  /// A recording has ended here and is not yet stored.
  bool has_ended_recording () const {
    return unstored && !(recording () && unstored->clip == cue.content.name);
  }

  std::optional<LoadedList> &loaded_list (const ListKind &kind) { return &kind == &playlists ? list : chase; }
};

class World;

// Actions on channels. They also set the stamps of clips and start precued clips and items of lists.

/// The content of the clip or virtual clip of that name. @throws Refusal when there is none, or when the
/// virtual clip cannot be shown now.
Content clip_content (World &world, const std::string &name);
Content vclip_content (World &world, const std::string &name);

/// A cue that shows the content from its beginning to its end.
Cue whole_cue (const Content &content);

/// @throws Refusal when the cue has a position or an angle that its content does not have
void check_cue (const Cue &cue);

void load (World &world, int channel, const Cue &cue);
void unload (World &world, int channel);
void play (World &world, int channel, Fixed speed);
void stop (World &world, int channel);

/// Loads the clip that was precued first. The channel keeps its speed, or stays stopped.
/// @throws Refusal when nothing is precued.
void switch_to_precued (World &world, int channel);

/// Is called when a channel has reached the end of what it plays. Starts what follows, or stops.
void reach_end (World &world, int channel);

/// How `take` starts the next item of the list or the precued clip.
struct Take {
  Transition transition;
  std::optional<int> follow; ///< number of `FollowSpeed`; absent: an item of a list starts by its own
                             ///< settings, a precued clip keeps the speed of the channel
};
/// Takes the next item of the list; without one, the clip that was precued first.
/// @throws Refusal when there is neither
void take (World &world, int channel, const Take &how);

/// Checks that a channel with an edit mask may record at this speed.
/// @throws Refusal when the clip is read-only, another channel records it, the speed is not normal, an
/// earlier recording is not yet stored, or the disk is full
void check_recording (const World &world, int channel, Fixed speed);

/// Stores the recording of a channel when it has ended. When this fails, it is tried again later.
void close_recording (World &world, int channel);

} // namespace sim
