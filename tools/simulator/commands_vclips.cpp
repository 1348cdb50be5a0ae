#include "commands.h"

#include <fmt/format.h>

namespace sim {

namespace {

VirtualClip &open_clip (Call &call) {
  return call.world.vclips.open (call.arguments.text ("VClipID"));
}

std::set<int> tracks_of (Call &call) {
  const std::set<int> tracks = call.arguments.words ("TrackSet");
  if (tracks.contains (track_timecode))
    throw Refusal ("A virtual clip has no timecode track");
  return tracks;
}

void check_range (const VirtualClip &clip, std::uint32_t at, std::uint32_t length) {
  if (std::uint64_t{at} + length > clip.length)
    throw Refusal (fmt::format ("Fields {} to {} are not in the virtual clip, which has {}", at,
                                std::uint64_t{at} + length, clip.length));
}

void vclip_create (Call &call) {
  call.world.vclips.create (call.arguments.text ("VClipID"), call.arguments.number ("ClipLength"));
}

void vclip_free (Call &call) {
  const std::string &id = call.arguments.text ("VClipID");
  call.world.vclips.find (id);
  call.world.check_unused (Source::vclip, id);
  call.world.vclips.remove (id);
}

void vclip_modification_start (Call &call) {
  const std::string &id = call.arguments.text ("VClipID");
  VirtualClip &clip = call.world.vclips.find (id);
  if (clip.opened_by != 0)
    throw Refusal (fmt::format ("Virtual clip '{}' is being modified", id));
  clip.opened_by = call.client.number;
}

void vclip_modification_end (Call &call) {
  open_clip (call).opened_by = 0;
}

// The source clip must have all fields that the segment shows at its speed.
void check_source (const Clip &clip, const Segment &segment) {
  const std::int64_t way = ((std::int64_t{segment.length} - 1) * segment.speed) >> 16;
  const std::int64_t last = segment.from + way;
  if (segment.length > 0 && (segment.from >= clip.length () || last < 0 || last >= clip.length ()))
    throw Refusal (fmt::format ("Fields {} to {} are not in clip '{}', which has {}", segment.from, last,
                                clip.id, clip.length ()));
}

void vclip_add_segment (Call &call) {
  VirtualClip &clip = open_clip (call);
  const Clip source = call.world.clips.find (call.arguments.text ("ClipID"));
  Segment segment;
  segment.at = call.arguments.number ("VClipPosition");
  segment.length = call.arguments.number ("ClipLength");
  segment.clip = source.id;
  segment.from = call.arguments.number ("ClipPosition");
  segment.speed = call.arguments.maybe_fixed ("Speed").value_or (fixed_one);
  check_range (clip, segment.at, segment.length);
  check_source (source, segment);
  const std::set<int> tracks = tracks_of (call);
  for (const int track : tracks)
    if (!source.has_track (track))
      throw Refusal (fmt::format ("Clip '{}' lacks a track of the segment", source.id));
  for (const int track : tracks)
    clip.add (track, segment);
}

void vclip_clear_segment (Call &call) {
  VirtualClip &clip = open_clip (call);
  const std::uint32_t at = call.arguments.number ("VClipPosition"),
                      length = call.arguments.number ("ClipLength");
  check_range (clip, at, length);
  for (const int track : tracks_of (call))
    clip.clear (track, at, length);
}

void vclip_ripple (Call &call) {
  VirtualClip &clip = open_clip (call);
  const std::uint32_t at = call.arguments.number ("VClipPosition");
  check_range (clip, at, 0);
  for (const int track : tracks_of (call))
    clip.ripple (track, at, call.arguments.distance ("VClipDistance"));
}

void vclip_track_enable (Call &call) {
  open_clip (call).enabled = tracks_of (call);
}

// Empties the tracks that the command names. The clip that it names must have these tracks.
void vclip_cfg_tracks (Call &call) {
  VirtualClip &clip = open_clip (call);
  const Clip model = call.world.clips.find (call.arguments.text ("ClipID"));
  const std::set<int> tracks = tracks_of (call);
  for (const int track : tracks)
    if (!model.has_track (track))
      throw Refusal (fmt::format ("Clip '{}' lacks one of the tracks", model.id));
  for (const int track : tracks)
    clip.tracks[track].clear ();
}

} // namespace

void add_vclip_commands (Handlers &handlers) {
  handlers["vclip_create"] = vclip_create;
  handlers["vclip_free"] = vclip_free;
  handlers["vclip_modification_start"] = vclip_modification_start;
  handlers["vclip_modification_end"] = vclip_modification_end;
  handlers["vclip_add_segment"] = vclip_add_segment;
  handlers["vclip_clear_segment"] = vclip_clear_segment;
  handlers["vclip_ripple"] = vclip_ripple;
  handlers["vclip_track_enable"] = vclip_track_enable;
  handlers["vclip_cfg_tracks"] = vclip_cfg_tracks;
}

} // namespace sim
