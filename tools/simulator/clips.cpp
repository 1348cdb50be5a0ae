#include "clips.h"

#include "message_limits.h"
#include "vocabulary.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

struct TextColumn {
  const char *name;
  std::string Clip::*member;
};
struct NumberColumn {
  const char *name;
  std::int64_t Clip::*member;
};

constexpr TextColumn text_columns[] = {
    {"id", &Clip::id},
    {"id8", &Clip::id8},
    {"title", &Clip::title},
    {"creator", &Clip::creator},
    {"project", &Clip::project},
    {"uuid", &Clip::uuid},
    {"parent", &Clip::parent_uuid},
    {"file_type", &Clip::file_type},
    {"standard", &Clip::standard},
};
constexpr NumberColumn number_columns[] = {
    {"playback", &Clip::playback},
    {"interp", &Clip::interp},
    {"loop", &Clip::loop},
    {"loop_in", &Clip::loop_in},
    {"loop_out", &Clip::loop_out},
    {"untrimmed", &Clip::untrimmed},
    {"trim_start", &Clip::trim_start},
    {"trim_end", &Clip::trim_end},
    {"timecode_source", &Clip::timecode_source},
    {"stripe_valid", &Clip::stripe_valid},
    {"stripe_field", &Clip::stripe_field},
    {"stripe_drop", &Clip::stripe_drop},
    {"frame0_valid", &Clip::frame0_valid},
    {"frame0_field", &Clip::frame0_field},
    {"frame0_drop", &Clip::frame0_drop},
    {"read_only_meta", &Clip::read_only_meta},
    {"read_only_content", &Clip::read_only_content},
    {"angles", &Clip::angles},
    {"angle", &Clip::angle},
    {"loaded_stamp", &Clip::loaded_stamp},
    {"unloaded_stamp", &Clip::unloaded_stamp},
    {"played_stamp", &Clip::played_stamp},
    {"meta_stamp", &Clip::meta_stamp},
    {"content_stamp", &Clip::content_stamp},
};

std::string column_list (std::string_view text_suffix, std::string_view number_suffix) {
  std::string list;
  for (const TextColumn &column : text_columns)
    list += fmt::format ("{}{}, ", column.name, text_suffix);
  for (const NumberColumn &column : number_columns)
    list += fmt::format ("{}{}, ", column.name, number_suffix);
  return list;
}

std::string table_of_clips () {
  return "CREATE TABLE IF NOT EXISTS clips (" + column_list (" TEXT NOT NULL", " INTEGER NOT NULL") +
         "tracks TEXT NOT NULL, directory TEXT NOT NULL, PRIMARY KEY (id)) WITHOUT ROWID";
}

std::string insert_into_clips () {
  std::string marks = "?, ?";
  for (std::size_t i = 0; i < std::size (text_columns) + std::size (number_columns); ++i)
    marks += ", ?";
  return "INSERT INTO clips (" + column_list ("", "") + "tracks, directory) VALUES (" + marks + ")";
}

// `video,audio:12`: the types, each with its trimmed start.
std::string tracks_text (const std::vector<Track> &tracks) {
  std::string text;
  for (const Track &track : tracks) {
    text += fmt::format ("{}{}", text.empty () ? "" : ",", word_at ("TrackType", track.type));
    if (track.trim_start)
      text += fmt::format (":{}", *track.trim_start);
  }
  return text;
}

Track track_of (std::string_view text) {
  const std::size_t colon = std::min (text.find (':'), text.size ());
  Track track;
  track.type = word_number ("TrackType", text.substr (0, colon));
  if (colon != text.size ())
    track.trim_start =
        static_cast<std::uint32_t> (read_unsigned (text.substr (colon + 1), 0xFFFFFFFFu).value_or (0));
  return track;
}

std::vector<Track> tracks_of (std::string_view text) {
  std::vector<Track> tracks;
  while (!text.empty ()) {
    const std::size_t comma = std::min (text.find (','), text.size ());
    tracks.push_back (track_of (text.substr (0, comma)));
    text.remove_prefix (std::min (comma + 1, text.size ()));
  }
  return tracks;
}

// All names in a directory are between these two, `dir/` and `dir0`, because `0` is the character after the
// slash.
std::pair<std::string, std::string> range_below (const std::string &directory) {
  if (directory.empty ())
    return {"", "\xFF"};
  return {directory + '/', directory + '0'};
}

} // namespace

Clips::Clips (Database &database, const Clock &clock, Random &random)
    : database_ (database), clock_ (clock), random_ (random) {
  database_.run (table_of_clips ());
  database_.run ("CREATE INDEX IF NOT EXISTS clips_of_directory ON clips (directory, id)");
  database_.run ("CREATE TABLE IF NOT EXISTS directories (name TEXT NOT NULL PRIMARY KEY) WITHOUT ROWID");
  database_.run ("CREATE TABLE IF NOT EXISTS clip_metadata (clip TEXT NOT NULL, place INTEGER NOT NULL, "
                 "key TEXT NOT NULL, value TEXT NOT NULL, PRIMARY KEY (clip, place)) WITHOUT ROWID");
  Rows rows = database_.query ("SELECT COALESCE (SUM (untrimmed), 0) FROM clips");
  rows.next ();
  fields_ = rows.number (0);
}

bool Clips::exists (const std::string &id) const {
  return database_.query ("SELECT 1 FROM clips WHERE id = ?", id).next ();
}

bool Clips::directory_exists (const std::string &name) const {
  return name.empty () || database_.query ("SELECT 1 FROM directories WHERE name = ?", name).next ();
}

std::int64_t Clips::count () const {
  Rows rows = database_.query ("SELECT COUNT (*) FROM clips");
  rows.next ();
  return rows.number (0);
}

Clip Clips::find (const std::string &id) const {
  Rows rows = database_.query ("SELECT " + column_list ("", "") + "tracks FROM clips WHERE id = ?", id);
  if (!rows.next ())
    throw Refusal (fmt::format ("Clip '{}' does not exist", id), "clipnotfound");
  Clip clip;
  int place = 0;
  for (const TextColumn &column : text_columns)
    clip.*column.member = rows.text (place++);
  for (const NumberColumn &column : number_columns)
    clip.*column.member = rows.number (place++);
  clip.tracks = tracks_of (rows.text (place));
  Rows pairs = database_.query ("SELECT key, value FROM clip_metadata WHERE clip = ? ORDER BY place", id);
  while (pairs.next ())
    clip.metadata.emplace_back (pairs.text (0), pairs.text (1));
  if (amend)
    amend (clip);
  return clip;
}

std::vector<std::string> Clips::column (Rows rows) const {
  std::vector<std::string> values;
  while (rows.next ())
    values.push_back (rows.text (0));
  return values;
}

std::vector<std::string> Clips::names_after (const std::string &last, const Directory &directory,
                                             int most) const {
  const std::int64_t limit = most;
  if (!directory)
    return column (database_.query ("SELECT id FROM clips WHERE id > ? ORDER BY id LIMIT ?", last, limit));
  return column (database_.query ("SELECT id FROM clips WHERE directory = ? AND id > ? ORDER BY id LIMIT ?",
                                  *directory, last, limit));
}

std::vector<std::string> Clips::directories_after (const std::string &last, const Directory &directory,
                                                   int most) const {
  const std::int64_t limit = most;
  if (!directory)
    return column (
        database_.query ("SELECT name FROM directories WHERE name > ? ORDER BY name LIMIT ?", last, limit));
  const auto [first, end] = range_below (*directory);
  return column (database_.query ("SELECT name FROM directories WHERE name > ? AND name < ? "
                                  "AND instr (substr (name, length (?) + 1), '/') = 0 ORDER BY name LIMIT ?",
                                  std::max (last, first), end, first, limit));
}

std::vector<std::string> Clips::names_below (const std::string &directory) const {
  const auto [first, end] = range_below (directory);
  return column (database_.query ("SELECT id FROM clips WHERE id > ? AND id < ? ORDER BY id", first, end));
}

std::vector<std::string> Clips::directories_below (const std::string &directory) const {
  const auto [first, end] = range_below (directory);
  return column (
      database_.query ("SELECT name FROM directories WHERE name > ? AND name < ? ORDER BY name", first, end));
}

std::optional<std::string> Clips::locked_below (const std::string &directory) const {
  const auto [first, end] = range_below (directory);
  Rows rows = database_.query ("SELECT id FROM clips WHERE id > ? AND id < ? "
                               "AND (read_only_meta <> 0 OR read_only_content <> 0) LIMIT 1",
                               first, end);
  return rows.next () ? std::optional (rows.text (0)) : std::nullopt;
}

void Clips::check_new_name (const std::string &name) const {
  check_name_length (name);
  if (name.empty () || name.front () == '/' || name.back () == '/' || name.find ("//") != name.npos)
    throw Refusal (fmt::format ("'{}' is not a valid name", name));
  if (exists (name))
    throw Refusal (fmt::format ("Clip '{}' exists already", name));
  if (directory_exists (name))
    throw Refusal (fmt::format ("Directory '{}' exists already", name));
  if (!directory_exists (directory_of (name)))
    throw Refusal (fmt::format ("Directory '{}' does not exist", directory_of (name)));
}

void Clips::insert (const Clip &clip) {
  static const std::string sql = insert_into_clips ();
  Rows rows = database_.prepare (sql);
  int place = 0;
  for (const TextColumn &column : text_columns)
    rows.bind (++place, clip.*column.member);
  for (const NumberColumn &column : number_columns)
    rows.bind (++place, clip.*column.member);
  rows.bind (++place, tracks_text (clip.tracks));
  rows.bind (++place, directory_of (clip.id));
  rows.next ();
  fields_ += clip.untrimmed;
}

void Clips::add (Clip clip) {
  check_new_name (clip.id);
  check_clip_size (clip);
  add_unchecked (std::move (clip));
}

void Clips::add_unchecked (Clip clip) {
  Change change (*this);
  if (clip.uuid.empty ())
    clip.uuid = new_uuid (random_);
  clip.meta_stamp = stamp ();
  clip.content_stamp = clip.meta_stamp;
  insert (clip);
  write_pairs (clip);
  change.finish ();
}

void Clips::write_pairs (const Clip &clip) {
  std::int64_t place = 0;
  for (const auto &[key, value] : clip.metadata)
    database_.run ("INSERT INTO clip_metadata VALUES (?, ?, ?, ?)", clip.id, place++, key, value);
}

void Clips::store (const Clip &clip) {
  Change change (*this);
  remove (clip.id);
  insert (clip);
  write_pairs (clip);
  change.finish ();
}

void Clips::remove (const std::string &id) {
  Change change (*this);
  Rows rows = database_.query ("SELECT untrimmed FROM clips WHERE id = ?", id);
  if (rows.next ())
    fields_ -= rows.number (0);
  database_.run ("DELETE FROM clips WHERE id = ?", id);
  database_.run ("DELETE FROM clip_metadata WHERE clip = ?", id);
  change.finish ();
}

void Clips::rename (const std::string &from, const std::string &to) {
  Clip clip = find (from);
  check_new_name (to);
  clip.id = to;
  check_clip_size (clip);
  Change change (*this);
  remove (from);
  store (clip);
  change.finish ();
}

void Clips::add_directory (const std::string &name) {
  check_new_name (name);
  database_.run ("INSERT INTO directories VALUES (?)", name);
}

void Clips::rename_directory (const std::string &from, const std::string &to) {
  if (from.empty () || !directory_exists (from))
    throw Refusal (fmt::format ("Directory '{}' does not exist", from));
  if (to.starts_with (from + '/'))
    throw Refusal (fmt::format ("Directory '{}' cannot be moved into itself", from));
  check_new_name (to);
  database_.run ("UPDATE directories SET name = ? WHERE name = ?", to, from);
}

void Clips::touch (const std::string &id, std::string_view column) {
  late_stamps_.push_back ({id, std::string (column), stamp ()});
  store_late_stamps ();
}

void Clips::store_late_stamps () {
  constexpr std::size_t most_stamps = 10'000;
  try {
    for (; !late_stamps_.empty (); late_stamps_.pop_front ()) {
      const Stamp &next = late_stamps_.front ();
      database_.run (fmt::format ("UPDATE clips SET {} = ? WHERE id = ?", next.column), next.time, next.clip);
    }
  } catch (const Refusal &) {
    if (late_stamps_.size () > most_stamps)
      late_stamps_.pop_front ();
  }
}

std::int64_t Clips::stamp () {
  last_stamp_ = std::max (clock_.milliseconds (), last_stamp_ + 1);
  return last_stamp_;
}

std::string new_uuid (Random &random) {
  const std::uint64_t high = (random.number () & ~0xF000ull) | 0x4000ull;
  const std::uint64_t low = (random.number () >> 2) | (1ull << 63);
  return fmt::format ("{:08x}-{:04x}-{:04x}-{:04x}-{:012x}", high >> 32, high >> 16 & 0xFFFF, high & 0xFFFF,
                      low >> 48, low & 0xFFFFFFFFFFFFull);
}

} // namespace sim
