#include "clip.h"

#include "message_limits.h"
#include "words.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>
#include <string_view>

namespace sim {

namespace {

std::uint64_t whole (std::int64_t value) {
  return static_cast<std::uint64_t> (value);
}

void write_tracks (Writer &out, const Clip &clip) {
  out.open ("TrackInfoVector");
  for (const Track &track : clip.tracks) {
    out.open ("TrackInfo").word ("TrackType", track.type);
    if (track.trim_start)
      out.number ("TrimStart", *track.trim_start);
    out.close ("TrackInfo");
  }
  out.close ("TrackInfoVector");
}

void write_stripe (Writer &out, const Clip &clip) {
  out.open ("StripeTimecode").boolean ("Valid", clip.stripe_valid != 0);
  if (clip.stripe_valid != 0)
    out.text ("VideoStandard", clip.standard)
        .distance ("FieldNumber", clip.stripe_field)
        .text ("DropFrameFlag", clip.stripe_drop ? "df" : "ndf");
  out.close ("StripeTimecode");
}

void write_frame0 (Writer &out, const Clip &clip) {
  if (clip.frame0_valid == 0)
    return;
  out.open ("Frame0Timecode").distance ("FieldNumber", clip.frame0_field);
  out.text ("DropFrameFlag", clip.frame0_drop ? "df" : "ndf").close ("Frame0Timecode");
}

void write_metadata (Writer &out, const Clip &clip) {
  if (clip.metadata.empty ())
    return;
  out.open ("MetadataList");
  for (const auto &[key, value] : clip.metadata)
    out.open ("Metadata").text ("Key", key).text ("Value", value).close ("Metadata");
  out.close ("MetadataList");
}

void write_required (Writer &out, const Clip &clip) {
  out.text ("ClipID", clip.id).text ("VideoStandard", clip.standard);
  write_tracks (out, clip);
  out.text ("Title", clip.title).text ("Creator", clip.creator).text ("Project", clip.project);
  out.word ("Playback", static_cast<int> (clip.playback)).word ("Interp", static_cast<int> (clip.interp));
  out.word ("Loop", static_cast<int> (clip.loop));
  out.number ("LoopOut", whole (clip.loop_out)).number ("LoopIn", whole (clip.loop_in));
  out.number ("ClipLength", clip.length ()).word ("TimecodeSource", static_cast<int> (clip.timecode_source));
  write_stripe (out, clip);
  out.boolean ("ReadOnly", clip.read_only_meta && clip.read_only_content);
}

void write_stamps (Writer &out, const Clip &clip) {
  out.number ("LoadedStamp", whole (clip.loaded_stamp)).number ("UnloadedStamp", whole (clip.unloaded_stamp));
  out.number ("PlayedStamp", whole (clip.played_stamp)).number ("MetaEditStamp", whole (clip.meta_stamp));
  out.number ("ContentEditStamp", whole (clip.content_stamp));
}

void write_optional (Writer &out, const Clip &clip) {
  out.text ("ID8", clip.id8).boolean ("ReadOnlyMeta", clip.read_only_meta != 0);
  out.boolean ("ReadOnlyContent", clip.read_only_content != 0);
  write_metadata (out, clip);
  out.text ("SpecialClipType", "normal").number ("ISOCount", whole (clip.angles)).number ("SSMSpeed", 1);
  out.number ("CompressionBitrate", 100);
  write_frame0 (out, clip);
  out.number ("TrimStart", whole (clip.trim_start)).number ("TrimEnd", whole (clip.trim_end));
  out.number ("ClipLengthUntrimmed", whole (clip.untrimmed)).text ("CompressionType", "avci");
  out.text ("ClipUUID", clip.uuid);
  if (!clip.parent_uuid.empty ())
    out.text ("ParentUUID", clip.parent_uuid);
  out.number ("Angle", whole (clip.angle));
  write_stamps (out, clip);
  out.text ("ClipFileType", clip.file_type);
}

void set_text (std::string &field, const Arguments &change, std::string_view tag) {
  if (change.has (tag))
    field = change.text (tag);
}

void set_word (std::int64_t &field, const Arguments &change, std::string_view tag) {
  if (change.has (tag))
    field = change.word (tag);
}

void set_number (std::int64_t &field, const Arguments &change, std::string_view tag) {
  if (change.has (tag))
    field = change.number (tag);
}

void change_stripe (Clip &clip, const Arguments &stripe) {
  clip.stripe_valid = stripe.boolean ("Valid");
  if (stripe.has ("FieldNumber"))
    clip.stripe_field = stripe.distance ("FieldNumber");
  if (stripe.has ("DropFrameFlag"))
    clip.stripe_drop = stripe.text ("DropFrameFlag") == "df";
}

void change_frame0 (Clip &clip, const Arguments &frame0) {
  clip.frame0_valid = frame0.has ("FieldNumber");
  if (clip.frame0_valid)
    clip.frame0_field = frame0.distance ("FieldNumber");
  if (frame0.has ("DropFrameFlag"))
    clip.frame0_drop = frame0.text ("DropFrameFlag") == "df";
}

constexpr std::size_t most_pairs = 1000; // more than a message holds

void set_pair (Clip &clip, const std::string &key, const std::string &value) {
  if (key.empty ())
    throw Refusal ("A key is empty");
  if (clip.metadata.size () >= most_pairs)
    throw Refusal (fmt::format ("A clip has {} pairs of metadata at most", most_pairs));
  for (auto &[known, old] : clip.metadata)
    if (known == key) {
      old = value;
      return;
    }
  clip.metadata.emplace_back (key, value);
}

void erase_keys (Clip &clip, const std::vector<Element> &keys) {
  std::set<std::string_view> wanted;
  for (const Element &key : keys)
    wanted.insert (key.text);
  std::erase_if (clip.metadata, [&] (const auto &pair) { return wanted.contains (pair.first); });
}

void change_metadata (Clip &clip, const Arguments &change) {
  if (change.has ("MetadataList"))
    for (const Element &pair : change.list ("MetadataList"))
      set_pair (clip, pair.child ("Key")->text, pair.child ("Value")->text);
  if (change.has ("KeyList"))
    erase_keys (clip, change.list ("KeyList"));
}

void change_tracks (Clip &clip, const Arguments &change) {
  if (!change.has ("TrackAttrVector"))
    return;
  for (const Element &element : change.list ("TrackAttrVector")) {
    const Arguments attribute (element);
    const auto type = attribute.maybe_word ("TrackType");
    if (type && !clip.has_track (*type))
      throw Refusal (fmt::format ("Clip '{}' has no {} track", clip.id, attribute.text ("TrackType")));
    for (Track &track : clip.tracks)
      if (!type || track.type == *type)
        track.trim_start = attribute.maybe_number ("TrimStart");
  }
}

void check_trim (const Clip &clip) {
  if (clip.trim_start + clip.trim_end > clip.untrimmed)
    throw Refusal (fmt::format ("Trimming {} and {} fields leaves nothing of clip '{}', which has {}",
                                clip.trim_start, clip.trim_end, clip.id, clip.untrimmed));
}

} // namespace

bool Clip::has_track (int type) const {
  return std::any_of (tracks.begin (), tracks.end (),
                      [=] (const Track &track) { return track.type == type; });
}

std::string directory_of (const std::string &name) {
  const std::size_t slash = name.rfind ('/');
  return slash == name.npos ? std::string () : name.substr (0, slash);
}

void write_clip_info (Writer &out, const Clip &clip) {
  out.open ("ClipInfo");
  write_required (out, clip);
  write_optional (out, clip);
  out.close ("ClipInfo");
}

// Lengths and stamps may get more digits later. This leaves room for them.
void check_clip_size (const Clip &clip) {
  constexpr std::size_t room_for_numbers = 300;
  Writer out;
  write_clip_info (out, clip);
  check_size ("What is known of the clip", out.result ().size () + room_for_numbers);
}

void change_clip (Clip &clip, const Arguments &change) {
  set_text (clip.id8, change, "ID8");
  set_text (clip.title, change, "Title");
  set_text (clip.creator, change, "Creator");
  set_text (clip.project, change, "Project");
  set_word (clip.playback, change, "Playback");
  set_word (clip.interp, change, "Interp");
  set_word (clip.loop, change, "Loop");
  set_number (clip.loop_out, change, "LoopOut");
  set_number (clip.loop_in, change, "LoopIn");
  set_word (clip.timecode_source, change, "TimecodeSource");
  if (change.has ("StripeTimecode"))
    change_stripe (clip, change.record ("StripeTimecode"));
  change_metadata (clip, change);
  set_number (clip.trim_start, change, "TrimStart");
  set_number (clip.trim_end, change, "TrimEnd");
  check_trim (clip);
  change_tracks (clip, change);
  if (change.has ("Frame0Timecode"))
    change_frame0 (clip, change.record ("Frame0Timecode"));
  check_clip_size (clip);
}

} // namespace sim
