#include "commands.h"

#include "message_limits.h"

#include <fmt/format.h>

namespace sim {

namespace {

void check_meta (const Clip &clip) {
  if (clip.read_only_meta)
    throw Refusal (fmt::format ("Clip '{}' is read-only", clip.id));
}

void check_content (const Clip &clip) {
  if (clip.read_only_content)
    throw Refusal (fmt::format ("Clip '{}' is read-only", clip.id));
}

constexpr int page_size = 200; // names

using Page = std::vector<std::string> (Clips::*) (const std::string &, const Clips::Directory &, int) const;

Clips::Directory directory_wanted (const Call &call) {
  const Clips::Directory name = call.arguments.maybe_text ("DirectoryName");
  if (name && !call.world.clips.directory_exists (*name))
    throw Refusal (fmt::format ("Directory '{}' does not exist", *name));
  return name;
}

// The list has every name that exists all the time while it is sent. A name that is created or deleted
// meanwhile may or may not be in it.
void send_names (Call &call, const char *body, const char *tag, Page page) {
  const auto next = [body, tag, page, &clips = call.world.clips, directory = directory_wanted (call),
                     last = std::string ()] () mutable {
    std::vector<std::string> names = (clips.*page) (last, directory, page_size);
    if (!names.empty ())
      last = names.back ();
    for (std::string &name : names)
      name = Writer ().open (body).text (tag, name).close (body).take ();
    return names;
  };
  call.rows (next);
}

void download_clipids (Call &call) {
  send_names (call, "clipid", "ClipID", &Clips::names_after);
}

void download_directory_names (Call &call) {
  send_names (call, "directory_name", "DirectoryName", &Clips::directories_after);
}

void get_clip_info (Call &call) {
  Writer out;
  out.open ("clipinfo");
  write_clip_info (out, call.world.clips.find (call.arguments.text ("ClipID")));
  call.answer (out.close ("clipinfo").take ());
}

void clip_exists (Call &call) {
  const std::string &id = call.arguments.text ("ClipID");
  check_name_length (id);
  Writer out;
  out.open ("clipexists").text ("ClipID", id).boolean ("Exists", call.world.clips.exists (id));
  call.answer (out.close ("clipexists").take ());
}

void modify_clip_attributes (Call &call) {
  Clip clip = call.world.clips.find (call.arguments.text ("ClipID"));
  check_meta (clip);
  change_clip (clip, call.arguments.record ("ClipAttrChange"));
  clip.meta_stamp = call.world.clips.stamp ();
  call.world.clips.store (clip);
  call.world.renew_clip (clip.id, clip.id);
  call.world.report_clip ("clip_changed", clip.id);
}

void delete_clip (Call &call) {
  const Clip clip = call.world.clips.find (call.arguments.text ("ClipID"));
  check_content (clip);
  call.world.check_unused (Source::clip, clip.id);
  call.world.clips.remove (clip.id);
  call.world.report_clip ("clip_deleted", clip.id);
  call.world.report_disk_space ();
}

void rename_one (World &world, const std::string &from, const std::string &to) {
  world.clips.rename (from, to);
  world.vclips.rename_source (from, to);
  world.renew_clip (from, to);
  world.report_clip ("clip_deleted", from);
  world.report_clip ("clip_created", to);
}

void rename_clip (Call &call) {
  const Clip clip = call.world.clips.find (call.arguments.text ("FromID"));
  check_meta (clip);
  check_content (clip);
  rename_one (call.world, clip.id, call.arguments.text ("ToID"));
}

void add_clip (World &world, const Clip &clip) {
  if (static_cast<std::uint64_t> (clip.untrimmed) * field_size > world.available_space ())
    throw Refusal ("The disk is full");
  world.clips.add (clip);
  world.report_clip ("clip_created", clip.id);
  world.report_disk_space ();
}

// A clip that is created for a channel is loaded there, ready to be recorded.
void create_clip (Call &call) {
  const std::set<int> types = call.arguments.words ("TrackSet");
  if (types.empty ())
    throw Refusal ("A clip needs a track");
  const bool loads = call.arguments.has ("Channel");
  const int channel = loads ? channel_of (call.arguments) : 0;
  Clip clip;
  clip.id = call.arguments.text ("ClipID");
  clip.standard = call.world.standard.name;
  clip.untrimmed = call.arguments.maybe_number ("ClipLength").value_or (0);
  clip.loop_out = clip.untrimmed == 0 ? 0 : clip.untrimmed - 1;
  for (const int type : types)
    clip.tracks.push_back ({type, {}});
  add_clip (call.world, clip);
  if (loads)
    load (call.world, channel, whole_cue (clip_content (call.world, clip.id)));
}

void create_child_clip (Call &call) {
  Clip clip = call.world.clips.find (call.arguments.text ("ParentClipID"));
  const std::uint32_t angle = call.arguments.maybe_number ("Angle").value_or (0);
  if (angle >= clip.angles)
    throw Refusal (fmt::format ("'{}' has no angle {}", clip.id, angle));
  clip.parent_uuid = std::exchange (clip.uuid, {});
  clip.id = call.arguments.text ("ClipID");
  clip.angle = angle;
  clip.loaded_stamp = clip.unloaded_stamp = clip.played_stamp = 0;
  clip.read_only_meta = clip.read_only_content = 0;
  add_clip (call.world, clip);
}

void create_directory (Call &call) {
  const std::string &name = call.arguments.text ("DirectoryName");
  call.world.clips.add_directory (name);
  call.world.report_directory ("directory_created", name);
}

void rename_directories (World &world, const std::string &from, const std::string &to) {
  std::vector<std::string> directories = world.clips.directories_below (from);
  directories.insert (directories.begin (), from);
  for (const std::string &name : directories) {
    const std::string renamed = to + name.substr (from.size ());
    world.clips.rename_directory (name, renamed);
    world.report_directory ("directory_deleted", name);
    world.report_directory ("directory_created", renamed);
  }
}

// Everything in the directory, at any depth, is renamed with it.
void rename_dir (Call &call) {
  World &world = call.world;
  const std::string &from = call.arguments.text ("FromDir"), &to = call.arguments.text ("ToDir");
  world.all_or_nothing ([&] {
    if (const auto locked = from.empty () ? std::nullopt : world.clips.locked_below (from))
      throw Refusal (fmt::format ("Clip '{}' is read-only", *locked));
    rename_directories (world, from, to);
    for (const std::string &name : world.clips.names_below (from))
      rename_one (world, name, to + name.substr (from.size ()));
  });
}

// One line for each segment of a virtual clip. For another clip, its sizes.
std::vector<std::string> file_lines (World &world, const std::string &id) {
  if (world.vclips.exists (id))
    return world.vclips.find (id).lines ();
  const Clip clip = world.clips.find (id);
  return {fmt::format ("fields {}", clip.untrimmed), fmt::format ("bytes {}", clip.untrimmed * field_size)};
}

void get_volatile_file_info (Call &call) {
  constexpr std::size_t full_message = 16384;
  const auto next = [lines = file_lines (call.world, call.arguments.text ("ClipID")), place = std::size_t{0},
                     started = false] () mutable -> std::vector<std::string> {
    if (std::exchange (started, true) && place == lines.size ())
      return {};
    Writer out;
    out.open ("volatile_file_info").open ("KeyList");
    while (place < lines.size () && out.result ().size () < full_message)
      out.text ("Key", lines[place++]);
    return {out.close ("KeyList").close ("volatile_file_info").take ()};
  };
  call.rows (next);
}

} // namespace

void add_clip_commands (Handlers &handlers) {
  handlers["download_clipids"] = download_clipids;
  handlers["download_directory_names"] = download_directory_names;
  handlers["get_clip_info"] = get_clip_info;
  handlers["clip_exists"] = clip_exists;
  handlers["modify_clip_attributes"] = modify_clip_attributes;
  handlers["delete_clip"] = delete_clip;
  handlers["rename_clip"] = rename_clip;
  handlers["create_clip"] = create_clip;
  handlers["create_child_clip"] = create_child_clip;
  handlers["create_directory"] = create_directory;
  handlers["rename_dir"] = rename_dir;
  handlers["get_volatile_file_info"] = get_volatile_file_info;
}

} // namespace sim
