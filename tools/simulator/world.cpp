#include "world.h"

#include "clip_file.h"
#include "commands.h"
#include "log.h"
#include "message_limits.h"
#include "vocabulary.h"
#include "wire.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace sim {

namespace {

constexpr std::size_t longest_error = 2000; // bytes of a text, which may quote what a client has sent

std::string report_text (const std::string &body) {
  return "<report>" + body + "</report>";
}

std::string reply_text (const std::string &xid, const std::string &body) {
  return "<reply>" + Writer ().text ("xid", xid).raw (body).take () + "</reply>";
}

std::string error_body (std::string_view text, std::string_view code) {
  return Writer ()
      .open ("error")
      .text ("ErrorMessage", shortened (text, longest_error))
      .text ("ErrorCode", code)
      .close ("error")
      .take ();
}

// The only place where messages are sent. A message that is too long for any client is left out.
bool deliver (Client &client, std::string message) {
  if (message.size () > longest_message) {
    log_line (fmt::format ("{} is not sent a message of {} bytes: {}", client.name, message.size (),
                           shortened (message, 100)));
    return false;
  }
  client.send (std::move (message));
  return true;
}

void deliver_error (Client &client, const std::string &xid, std::string_view text, std::string_view code) {
  deliver (client, reply_text (xid, error_body (text, code)));
}

// `Channel=A Transition{TransitionType=cut}`
std::string readable (const Element &element) {
  std::string line;
  for (const Element &child : element.children) {
    line += line.empty () ? "" : " ";
    line += child.name;
    if (!child.children.empty ())
      line += '{' + readable (child) + '}';
    else if (!child.text.empty ())
      line += '=' + child.text;
  }
  return line;
}

std::string on_one_line (std::string text) {
  std::replace_if (
      text.begin (), text.end (), [] (char c) { return c >= 0 && c < ' '; }, '?');
  return text;
}

const Element &command_of (const Element &root) {
  if (root.children.size () < 2)
    throw Refusal ("The document holds no command");
  if (root.children.size () > 2)
    throw Refusal (fmt::format ("The document holds {} commands", root.children.size () - 1));
  if (root.children.front ().name != "xid")
    throw Refusal ("Tag xid in cmd is in the wrong place");
  return root.children.back ();
}

void check_command (const Element &command) {
  const Grammar *grammar = find_command (command.name);
  if (!grammar)
    throw Refusal (fmt::format ("Unknown command '{}'", command.name));
  check_parts (command, grammar->parts);
}

void carry_out (Call &call, const Element &command) {
  const Handler handler = find_handler (command.name);
  if (!handler)
    throw Refusal (fmt::format ("The simulator does not support '{}'", command.name));
  handler (call);
}

const std::string &identifier_of (const Element &root) {
  const Element *xid = root.child ("xid");
  if (root.name != "cmd" || !xid || !xid->children.empty ())
    throw Malformed ("a document without an identifier");
  if (escaped (xid->text).size () > longest_identifier)
    throw Malformed ("an identifier that is too long");
  return xid->text;
}

void report_position (World &world, Client &client, int channel) {
  for (const int kind : {report_timecode, report_aux_audio})
    if (client.channel_reports.contains ({channel, kind}))
      world.report_present (client, channel, kind);
}

} // namespace

World::World (const Options &given)
    : options (given), standard (find_standard (given.standard).value ()), clock (standard, given.start),
      random (given.seed ? Random (*given.seed) : Random ()), database (given.database),
      clips (database, clock, random), lists (database), metadata (database), configuration (given) {
  clips.amend = [this] (Clip &clip) { amend (clip); };
  clock.set_rate (options.rate);
  clock.pause (options.paused);
  take_clips (*this);
  constexpr std::uint64_t usual_space = 20'000'000'000'000;
  total_space_ = std::max (usual_space, 2 * field_size * static_cast<std::uint64_t> (clips.fields ()));
  space_reported_ = available_space ();
  if (!options.empty)
    load_first_clip ();
}

void World::load_first_clip () {
  const std::vector<std::string> names = clips.names_after ("", "", 1);
  if (names.empty ())
    return;
  for (int channel = 0; channel < channel_count; ++channel)
    load (*this, channel, whole_cue (clip_content (*this, names.front ())));
}

void World::join (Client &client) {
  clients_.push_back (&client);
}

void World::leave (Client &client) {
  clients_.erase (std::remove (clients_.begin (), clients_.end (), &client), clients_.end ());
  release (client);
  report_news ();
}

void World::release (const Client &client) {
  for (int channel = 0; channel < channel_count; ++channel)
    if (player (channel).steal.client == client.number)
      player_to_change (channel).steal = {};
  vclips.release (client.number);
  std::erase_if (dictionary, [&] (const auto &entry) {
    if (entry.second.owner != client.number)
      return false;
    report_key (*this, entry.first, "");
    return true;
  });
}

Player &World::player_to_change (int channel) {
  touched_.insert (channel);
  moved_.insert (channel);
  return players_[static_cast<std::size_t> (channel)];
}

void World::gang (const std::set<int> &channels, const std::function<void (int)> &action) {
  all_or_nothing ([&] {
    for (const int channel : channels)
      action (channel);
  });
}

void World::all_or_nothing (const std::function<void ()> &action) {
  const std::array<Player, channel_count> before = players_;
  const auto told = static_cast<std::ptrdiff_t> (pending_.size ());
  Clips::Change change (clips);
  try {
    action ();
    change.finish ();
  } catch (const Refusal &) {
    players_ = before;
    pending_.erase (pending_.begin () + told, pending_.end ());
    throw;
  }
}

void World::renew_clip (const std::string &from, const std::string &to) {
  const auto is_it = [&] (const Content &content) {
    return content.source == Source::clip && content.name == from;
  };
  for (int channel = 0; channel < channel_count; ++channel) {
    Player &known = players_[static_cast<std::size_t> (channel)];
    if (known.unstored && known.unstored->clip == from)
      known.unstored = Recording{to, known.unstored->length, known.unstored->length};
    if (is_it (known.cue.content))
      player_to_change (channel).renew (clip_content (*this, to));
    for (Precued &precued : known.precued)
      if (is_it (precued.cue.content))
        precued.cue.content = clip_content (*this, to);
  }
}

void World::check_unused (Source source, const std::string &name) const {
  for (int channel = 0; channel < channel_count; ++channel) {
    const Player &user = player (channel);
    const Content &loaded = user.cue.content;
    const std::string_view letter = word_at ("Channel", channel);
    if (loaded.source == source && loaded.name == name)
      throw Refusal (fmt::format ("'{}' is loaded on channel {}", name, letter));
    for (const Precued &precued : user.precued)
      if (precued.cue.content.source == source && precued.cue.content.name == name)
        throw Refusal (fmt::format ("'{}' is precued on channel {}", name, letter));
    if (source == Source::clip && loaded.source == Source::vclip && vclips.shows (loaded.name, name))
      throw Refusal (
          fmt::format ("'{}' is shown by virtual clip '{}' on channel {}", name, loaded.name, letter));
  }
}

// Adds what has been recorded but not yet stored to the clip.
void World::amend (Clip &clip) const {
  for (const Player &player : players_) {
    if (!player.unstored || player.unstored->clip != clip.id || player.unstored->growth () == 0)
      continue;
    const bool loops_to_end = clip.loop_out + 1 >= clip.length ();
    clip.untrimmed += player.unstored->growth ();
    if (loops_to_end)
      clip.loop_out = clip.length () - 1;
  }
}

std::uint64_t World::available_space () const {
  std::uint64_t fields = static_cast<std::uint64_t> (clips.fields ());
  for (const Player &player : players_)
    fields += player.unstored ? player.unstored->growth () : 0;
  const std::uint64_t used = fields * field_size;
  return total_space_ - std::min (used, total_space_);
}

void World::log (std::string_view line) const {
  log_line (options.log_prefix + std::string (line));
}

void World::receive (Client &client, const std::string &document) {
  if (options.verbose)
    log_line (fmt::format ("{} sent {}", client.name, document));
  const Element root = parse_document (document);
  const std::string &xid = identifier_of (root);
  std::string outcome = "ok";
  std::string line = "?";
  try {
    if (options.strict && canonical_text (root) != document)
      throw Refusal ("The document is not written in the expected form");
    const Element &command = command_of (root);
    line = command.name + ' ' + readable (command);
    check_command (command);
    Call call (*this, client, xid, command);
    carry_out (call, command);
    if (!call.answered ())
      call.answer (empty_body ("ok"));
  } catch (const Refusal &refusal) {
    outcome = std::string ("error, ") + refusal.what ();
    deliver_error (client, xid, refusal.what (), refusal.code);
  }
  if (!options.quiet)
    log_line (fmt::format ("{} {} {}: {}", client.name, on_one_line (xid), on_one_line (line),
                           on_one_line (outcome)));
  report_news ();
}

void World::pass_fields (int count) {
  const std::int64_t second = std::max<std::int64_t> (standard.fields / standard.seconds, 1);
  for (int passed = 0; passed < count; ++passed) {
    for (int channel = 0; channel < channel_count; ++channel)
      pass_field (channel);
    if (++field_ % second == 0)
      each_second ();
  }
  report_news ();
  report_positions ();
}

void World::pass_field (int channel) {
  const Player &before = player (channel);
  if (before.status () == status_stop && !before.in_transition ())
    return;
  Player &moving = player_to_change (channel);
  try {
    if (moving.recording () && available_space () < field_size)
      throw Refusal ("The disk is full");
    if (moving.pass_field ())
      reach_end (*this, channel);
  } catch (const Refusal &refusal) {
    moving.stop ();
    log (fmt::format ("channel {} stops: {}", word_at ("Channel", channel), refusal.what ()));
  }
}

// Work that can wait for the next second.
void World::each_second () {
  clips.store_late_stamps ();
  for (int channel = 0; channel < channel_count; ++channel)
    if (player (channel).has_ended_recording ())
      touched_.insert (channel);
  if (available_space () != space_reported_)
    report_disk_space ();
}

void World::send_report (Client &client, const std::string &body) {
  if (options.verbose)
    log_line (fmt::format ("{} gets {}", client.name, body));
  deliver (client, report_text (body));
}

void World::each_client (const std::function<void (const Client &)> &visit) const {
  for (const Client *client : clients_)
    visit (*client);
}

void World::report_if (std::function<bool (const Client &)> wanted, std::string body) {
  pending_.push_back ({std::move (wanted), std::move (body)});
}

void World::report (std::string_view report_type, std::string body) {
  const int kind = word_number ("ReportType", report_type);
  report_if ([=] (const Client &client) { return client.reports.contains (kind); }, std::move (body));
}

void World::report_channel (int channel, int kind, std::string body) {
  report_if (
      [=] (const Client &client) {
        return client.channel_reports.contains ({channel, kind});
      },
      std::move (body));
}

void World::report_clip (std::string_view body_name, const std::string &clip) {
  report ("clip_change", Writer ().open (body_name).text ("ClipID", clip).close (body_name).take ());
}

void World::report_directory (std::string_view body_name, const std::string &directory) {
  report ("directory_change",
          Writer ().open (body_name).text ("DirectoryName", directory).close (body_name).take ());
}

std::string World::disk_space_body () const {
  Writer out;
  out.open ("disk_space_changed").open ("DiskSpaceChange").number ("TotalDiskSpace", total_space_);
  out.number ("AvailableDiskSpace", available_space ())
      .close ("DiskSpaceChange")
      .close ("disk_space_changed");
  return out.take ();
}

void World::report_disk_space () {
  space_reported_ = available_space ();
  report ("disk_space", disk_space_body ());
}

void World::report_present (Client &client, int channel, int kind) {
  for (const std::string &body : present_bodies (*this, channel, kind))
    send_report (client, body);
}

// A moving channel may be back at its last reported position at the next report of positions. Then nothing is
// sent to the other clients, but this client has been sent a position in between and must get it.
void World::start_reports (Client &client, int channel, int kind) {
  client.channel_reports.insert ({channel, kind});
  report_present (client, channel, kind);
  if (moved_.contains (channel))
    client.unsent_positions.insert (channel);
}

void World::flush_reports () {
  for (const Report &entry : std::exchange (pending_, {}))
    for (Client *client : clients_)
      if (entry.wanted (*client))
        send_report (*client, entry.body);
}

void World::report_news () {
  flush_reports ();
  report_players ();
}

void World::report_players () {
  for (const int channel : std::exchange (touched_, {})) {
    close_recording (*this, channel);
    for (auto &[kind, body] : reporter_.news (*this, channel))
      report_channel (channel, kind, std::move (body));
  }
  flush_reports ();
}

// Positions are sent only here, after fields have passed, so that none is sent twice in a field. A client
// that does not read fast enough gets the last position when it has caught up.
void World::report_positions () {
  if (field_ < next_positions_)
    return;
  const std::int64_t rate = options.report_rate;
  next_positions_ =
      field_ + (rate == 0 ? 1 : std::max<std::int64_t> (standard.fields / standard.seconds / rate, 1));
  std::set<int> news;
  for (const int channel : std::exchange (moved_, {}))
    if (reporter_.position_is_news (*this, channel))
      news.insert (channel);
  for (Client *client : clients_) {
    client->unsent_positions.insert (news.begin (), news.end ());
    if (!client->lags ())
      for (const int channel : std::exchange (client->unsent_positions, {}))
        report_position (*this, *client, channel);
  }
}

void Call::row (const std::string &body) {
  deliver (client, reply_text (xid_, body));
}

void Call::rows (std::function<std::vector<std::string> ()> next) {
  answered_ = true;
  client.produce ([&to = client, xid = xid_, more = std::move (next)] {
    try {
      const std::vector<std::string> bodies = more ();
      for (const std::string &body : bodies)
        deliver (to, reply_text (xid, body));
      if (!bodies.empty ())
        return true;
      deliver (to, reply_text (xid, empty_body ("ok")));
    } catch (const Refusal &refusal) {
      deliver_error (to, xid, refusal.what (), refusal.code);
      log_line (fmt::format ("{} {} ends with error, {}", to.name, xid, refusal.what ()));
    }
    return false;
  });
}

void Call::answer (const std::string &body) {
  answered_ = true;
  if (!deliver (client, reply_text (xid_, body)))
    deliver_error (client, xid_, "The answer would be longer than a message may be", "general");
}

} // namespace sim
