#include "vclips.h"

#include "message_limits.h"
#include "vocabulary.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

// The part of a segment from field `start` of the virtual clip on. The speed of the segment decides how far
// its first field of the clip moves.
Segment tail (const Segment &segment, std::uint32_t start) {
  Segment rest = segment;
  const std::uint32_t skipped = start - segment.at;
  const std::int64_t from = std::int64_t{segment.from} + ((std::int64_t{segment.speed} * skipped) >> 16);
  rest.at = start;
  rest.length -= skipped;
  rest.from = static_cast<std::uint32_t> (std::max<std::int64_t> (from, 0));
  return rest;
}

bool is_before (const Segment &left, const Segment &right) {
  return left.at < right.at;
}

} // namespace

void VirtualClip::clear (int track, std::uint32_t at, std::uint32_t fields) {
  const std::uint32_t end = at + fields;
  std::vector<Segment> kept;
  for (Segment &segment : tracks[track]) {
    if (segment.end () > end && segment.at < end)
      kept.push_back (tail (segment, end));
    if (segment.at < at && segment.end () > at)
      segment.length = at - segment.at;
    if (segment.end () <= at || segment.at >= end)
      kept.push_back (segment);
  }
  std::sort (kept.begin (), kept.end (), is_before);
  tracks[track] = std::move (kept);
}

void VirtualClip::add (int track, const Segment &segment) {
  clear (track, segment.at, segment.length);
  std::vector<Segment> &segments = tracks[track];
  segments.insert (std::upper_bound (segments.begin (), segments.end (), segment, is_before), segment);
}

void VirtualClip::split (int track, std::uint32_t at) {
  std::vector<Segment> &segments = tracks[track];
  const auto across = std::find_if (segments.begin (), segments.end (), [=] (const Segment &segment) {
    return segment.at < at && segment.end () > at;
  });
  if (across == segments.end ())
    return;
  const Segment rest = tail (*across, at);
  across->length = at - across->at;
  segments.insert (across + 1, rest);
}

void VirtualClip::ripple (int track, std::uint32_t at, std::int32_t distance) {
  const std::int64_t way = std::max (std::int64_t{distance}, -std::int64_t{at});
  if (way < 0)
    clear (track, static_cast<std::uint32_t> (at + way), static_cast<std::uint32_t> (-way));
  split (track, at);
  std::vector<Segment> kept;
  for (Segment &segment : tracks[track]) {
    const std::int64_t place = segment.at + (segment.at >= at ? way : 0);
    if (place >= length)
      continue;
    segment.at = static_cast<std::uint32_t> (place);
    segment.length = std::min (segment.length, length - segment.at);
    kept.push_back (segment);
  }
  tracks[track] = std::move (kept);
}

std::set<std::string> VirtualClip::sources () const {
  std::set<std::string> names;
  for (const auto &[track, segments] : tracks)
    for (const Segment &segment : segments)
      names.insert (segment.clip);
  return names;
}

std::vector<std::string> VirtualClip::lines () const {
  std::vector<std::string> lines;
  for (const auto &[track, segments] : tracks)
    for (const Segment &segment : segments)
      lines.push_back (fmt::format ("{}{} {} {} {} {} {}", word_at ("TrackType", track),
                                    enabled.contains (track) ? "" : " (off)", segment.at, segment.length,
                                    segment.clip, segment.from, fixed_text (segment.speed)));
  return lines;
}

void VirtualClips::create (const std::string &id, std::uint32_t length) {
  if (id.empty ())
    throw Refusal ("A virtual clip needs a name");
  check_name_length (id);
  if (exists (id))
    throw Refusal (fmt::format ("Virtual clip '{}' exists already", id));
  VirtualClip clip;
  clip.length = length;
  clip.enabled = {0, 1, 2};
  clips_[id] = clip;
}

VirtualClip &VirtualClips::find (const std::string &id) {
  const auto found = clips_.find (id);
  if (found == clips_.end ())
    throw Refusal (fmt::format ("Virtual clip '{}' does not exist", id), "clipnotfound");
  return found->second;
}

void VirtualClips::remove (const std::string &id) {
  find (id);
  clips_.erase (id);
}

bool VirtualClips::shows (const std::string &id, const std::string &clip) const {
  const auto found = clips_.find (id);
  return found != clips_.end () && found->second.sources ().contains (clip);
}

void VirtualClips::rename_source (const std::string &from, const std::string &to) {
  for (auto &[id, clip] : clips_)
    for (auto &[track, segments] : clip.tracks)
      for (Segment &segment : segments)
        if (segment.clip == from)
          segment.clip = to;
}

void VirtualClips::release (int client) {
  for (auto &[id, clip] : clips_)
    if (clip.opened_by == client)
      clip.opened_by = 0;
}

VirtualClip &VirtualClips::open (const std::string &id) {
  VirtualClip &clip = find (id);
  if (clip.opened_by == 0)
    throw Refusal (fmt::format ("Virtual clip '{}' is not being modified", id));
  return clip;
}

} // namespace sim
