#pragma once

#include "values.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace sim {

/// A part of one track of a virtual clip, taken from a clip.
struct Segment {
  std::uint32_t at = 0;     ///< its first field in the virtual clip
  std::uint32_t length = 0; ///< fields
  std::string clip;
  std::uint32_t from = 0; ///< the field of the clip that is shown first
  Fixed speed = fixed_one;

  std::uint32_t end () const { return at + length; }
};

/// A clip that is made of segments of other clips, separately for each track. The segments of a track are in
/// order and do not overlap. Where there is no segment, the track is empty.
struct VirtualClip {
  std::uint32_t length = 0;
  std::map<int, std::vector<Segment>> tracks; ///< by number of `TrackType`
  std::set<int> enabled;
  int opened_by = 0; ///< number of the client that modifies it; 0: none

  void clear (int track, std::uint32_t at, std::uint32_t fields);
  void add (int track, const Segment &segment);
  /// Moves everything from a place on: a positive distance moves it to later positions, a negative distance
  /// to earlier ones. It replaces what was at its new place. What is moved beyond the end is removed.
  void ripple (int track, std::uint32_t at, std::int32_t distance);
  /// The clips that it shows.
  std::set<std::string> sources () const;
  /// One line for each segment: track, place, length, clip, first field, speed.
  std::vector<std::string> lines () const;

private:
  void split (int track, std::uint32_t at);
};

/// The virtual clips of the server. They are kept in memory only.
class VirtualClips {
public:
  bool exists (const std::string &id) const { return clips_.contains (id); }
  /// @throws Refusal when the name is empty or in use.
  void create (const std::string &id, std::uint32_t length);
  /// @throws Refusal when there is no virtual clip of that name.
  VirtualClip &find (const std::string &id);
  void remove (const std::string &id);
  /// Whether the virtual clip has a segment of a clip.
  bool shows (const std::string &id, const std::string &clip) const;
  /// Must be called when a clip has been renamed.
  void rename_source (const std::string &from, const std::string &to);
  /// Ends all modifications of a client.
  void release (int client);
  /// The virtual clip, which must be open for changes. @throws Refusal when it is not
  VirtualClip &open (const std::string &id);

private:
  std::map<std::string, VirtualClip> clips_;
};

} // namespace sim
