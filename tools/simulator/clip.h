#pragma once

#include "standard.h"
#include "values.h"
#include "writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sim {

/// A track of a clip.
struct Track {
  int type = 0; ///< number of `TrackType`
  std::optional<std::uint32_t> trim_start;
};

/// A clip with all its attributes. Numbers are as wide as in the database; lengths and positions are in
/// fields.
struct Clip {
  std::string id, id8, title, creator, project, uuid, parent_uuid, file_type = "simulated";
  std::string standard; ///< word of `VideoStandard`
  std::int64_t playback = 0, interp = 0, loop = 0, loop_in = 0, loop_out = 0;
  std::int64_t untrimmed = 0, trim_start = 0, trim_end = 0;
  std::int64_t timecode_source = 0;
  std::int64_t stripe_valid = 0, stripe_field = 0, stripe_drop = 0;
  std::int64_t frame0_valid = 0, frame0_field = 0, frame0_drop = 0;
  std::int64_t read_only_meta = 0, read_only_content = 0;
  std::int64_t angles = 1, angle = 0;
  std::int64_t loaded_stamp = 0, unloaded_stamp = 0, played_stamp = 0, meta_stamp = 0, content_stamp = 0;
  std::vector<Track> tracks;
  std::vector<std::pair<std::string, std::string>> metadata; ///< keys and values, in order

  std::uint32_t length () const { return static_cast<std::uint32_t> (untrimmed - trim_start - trim_end); }
  bool has_track (int type) const;
};

/// Returns the directory that contains a clip or a directory; empty for the top directory.
std::string directory_of (const std::string &name);

/// Writes the record `ClipInfo`.
void write_clip_info (Writer &out, const Clip &clip);

/// @throws Refusal when the record `ClipInfo` would not fit into a message.
void check_clip_size (const Clip &clip);

/// Applies a `ClipAttrChange` to the clip. @throws Refusal when a value is not possible. Then some of the
/// changes may have been made.
void change_clip (Clip &clip, const Arguments &change);

} // namespace sim
