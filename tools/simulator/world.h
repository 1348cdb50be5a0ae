#pragma once

#include "channel_reports.h"
#include "client.h"
#include "clips.h"
#include "clock.h"
#include "configuration.h"
#include "database.h"
#include "lists.h"
#include "metadata.h"
#include "options.h"
#include "player.h"
#include "random.h"
#include "standard.h"
#include "values.h"
#include "vclips.h"
#include "writer.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace sim {

/// An entry of the user dictionary. An entry with an owner is removed when its client disconnects.
struct DictionaryEntry {
  std::string value;
  int owner = 0; ///< client number; 0: none
};

/// The simulated server without its sockets: its whole state, and the clients that are connected. One thread.
class World {
public:
  explicit World (const Options &given);

  void join (Client &client);
  void leave (Client &client);

  /// Writes a line to the log.
  void log (std::string_view line) const;

  /// Carries out the command of one document and answers it. @throws Malformed when it cannot be answered.
  void receive (Client &client, const std::string &document);

  /// Lets a number of fields pass, and sends the reports of what changes.
  void pass_fields (int count);

  /// A channel that the caller may change. The changes are reported later.
  Player &player_to_change (int channel);
  const Player &player (int channel) const { return players_[static_cast<std::size_t> (channel)]; }
  /// Calls the action for several channels. When one of them refuses, none is changed.
  void gang (const std::set<int> &channels, const std::function<void (int)> &action);
  /// Calls an action that changes clips and channels. When it throws a Refusal, its changes are undone.
  void all_or_nothing (const std::function<void ()> &action);
  /// Must be called after a clip has been changed or renamed. Channels that have it loaded or precued get its
  /// new state.
  void renew_clip (const std::string &from, const std::string &to);
  /// @throws Refusal when a channel has the clip loaded or precued, or has a virtual clip loaded that shows
  /// it
  void check_unused (Source source, const std::string &name) const;

  /// The number of fields since the start.
  std::int64_t field () const { return field_; }
  std::uint64_t total_space () const { return total_space_; }
  std::uint64_t available_space () const;
  std::string disk_space_body () const;

  // Reports are sent after the answer to the command that has caused them.
  void report (std::string_view report_type, std::string body);
  void report_channel (int channel, int kind, std::string body);
  void each_client (const std::function<void (const Client &)> &visit) const;
  void report_if (std::function<bool (const Client &)> wanted, std::string body);
  /// Reports about a clip, such as `clip_created`.
  void report_clip (std::string_view body_name, const std::string &clip);
  void report_directory (std::string_view body_name, const std::string &directory);
  void report_disk_space ();
  /// Sends the reports that are pending, and those of what has changed on the channels.
  void report_news ();

  /// Sends the client the present values of a kind of channel report now, and the changes from now on.
  void start_reports (Client &client, int channel, int kind);
  /// Sends a client the present values of a kind of channel report.
  void report_present (Client &client, int channel, int kind);
  void send_report (Client &client, const std::string &body);

  const Options options;
  const Standard standard;
  Clock clock;
  Random random;
  Database database;
  Clips clips;
  VirtualClips vclips;
  Lists lists;
  MetadataDatabases metadata;
  Configuration configuration;
  std::map<std::string, DictionaryEntry> dictionary;
  std::int64_t chase_field = -1; ///< the last chase timecode; negative: none yet
  std::uint32_t metadata_changes = 0;
  std::map<std::string, std::string> present_reports; ///< by kind: bodies that a control request has set

private:
  struct Report {
    std::function<bool (const Client &)> wanted;
    std::string body;
  };
  void load_first_clip ();
  void amend (Clip &clip) const;
  void pass_field (int channel);
  void each_second ();
  void release (const Client &client);
  void flush_reports ();
  void report_players ();
  void report_positions ();

  std::array<Player, channel_count> players_;
  std::set<int> touched_; ///< channels that may have changed
  std::set<int> moved_;   ///< channels whose position may have changed
  ChannelReporter reporter_;
  std::vector<Report> pending_;
  std::vector<Client *> clients_;
  std::int64_t field_ = 0;
  std::int64_t next_positions_ = 0; ///< the field from which positions may be reported again
  std::uint64_t total_space_ = 0;
  std::uint64_t space_reported_ = 0;
};

/// Bytes that one field takes on the disk.
inline constexpr std::uint32_t field_size = 262144;

/// A command while its handler runs. When the handler returns without an answer, the answer is `ok`. When it
/// throws a Refusal, the answer is `error`.
class Call {
public:
  Call (World &whole, Client &from, std::string identifier, const Element &command)
      : world (whole), client (from), arguments (command), xid_ (std::move (identifier)) {}

  /// Sends one row of an answer that has few rows. After the last row, the handler returns and `ok` is sent.
  void row (const std::string &body);

  /// Sends an answer of many rows, as fast as the client takes them, and `ok` after the last one.
  /// @param next returns the next rows, at most some tens of kilobytes, and none at the end. When it throws a
  ///   Refusal, the answer ends with `error`.
  void rows (std::function<std::vector<std::string> ()> next);

  /// Sends the one answer of the command.
  void answer (const std::string &body);

  bool answered () const { return answered_; }

  World &world;
  Client &client;
  const Arguments arguments;

private:
  const std::string xid_;
  bool answered_ = false;
};

using Handler = void (*) (Call &);

/// The handler of a command, or null.
Handler find_handler (std::string_view command);

} // namespace sim
