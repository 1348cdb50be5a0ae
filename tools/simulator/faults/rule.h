#pragma once

#include "faults/message_summary.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sim {

/// The kinds of faults.
enum class Fault {
  refuse,             ///< the command is answered with an error and not carried out
  delay,              ///< the message is sent later
  no_answer,          ///< the message is not sent
  twice,              ///< the message is sent twice
  out_of_order,       ///< the answer is sent after the next answer to another command
  wrong_kind,         ///< the answer has a body that does not belong to the command
  malformed,          ///< the message is not well-formed
  oversized,          ///< the message is longer than allowed
  cut,                ///< the first bytes of the message are sent, then the connection is closed
  reset,              ///< the connection is reset
  pieces,             ///< the message is sent in small pieces
  stop_reading,       ///< nothing more is read from the client
  freeze,             ///< nothing more is read or sent; the connection stays up
  refuse_connections, ///< no new connections are accepted; the present ones stay up
  go_away             ///< all connections are closed and no new ones are accepted
};

/// The name of a fault in a rule.
std::string_view name_of (Fault fault);

/// One client, by the number of its connection or by its address. Empty: all clients.
struct WhichClient {
  std::string text;
  bool matches (int number, const std::string &address) const {
    return text.empty () || text == std::to_string (number) || text == address;
  }
};

/// A fault, with the conditions under which it is applied.
struct Rule {
  /// Reads a rule. @throws std::runtime_error that says what is wrong with it.
  static Rule from (const nlohmann::json &json);
  nlohmann::json as_json () const;

  /// Whether the rule is in effect as long as it is set. The other rules are applied to single messages.
  bool is_lasting () const { return command.empty () && report.empty (); }
  /// Whether the rule is about this command or report. Does not look at the client.
  bool concerns (const MessageSummary &summary) const;

  int id = 0; ///< assigned by `Faults`
  Fault fault = Fault::refuse;

  // To which messages the rule is applied.
  std::string command; ///< name of a command, `*` for all
  std::string report;  ///< name of a report, `*` for all
  std::string channel; ///< letter; empty: any or none
  WhichClient client;
  std::uint64_t nth = 0;            ///< only the nth message that matches; 0: all
  double chance = 1;                ///< probability for each message
  std::uint64_t times = UINT64_MAX; ///< it is applied to at most this many messages
  std::uint64_t row = 1;            ///< number of the message in an answer of several messages

  // What the fault does.
  std::pair<std::uint64_t, std::uint64_t> ms{0, 0}; ///< of `delay` and `pieces`: chosen between the two
  bool overtake = false;                            ///< later messages need not wait for a delayed one
  std::string text = "The simulator was asked to refuse it"; ///< of `refuse`
  std::string code = "general";
  std::optional<std::string> body;     ///< of `wrong_kind`
  std::optional<std::string> message;  ///< of `malformed`: any bytes
  std::optional<std::uint64_t> bytes;  ///< of `oversized`, `cut` and `pieces`
  std::optional<std::uint64_t> for_ms; ///< how long a lasting rule stays, or `out_of_order` waits
  bool everyone = false;               ///< of `stop_reading` and `freeze`: all clients instead of this one

  // Counts.
  std::uint64_t seen = 0;    ///< messages that matched
  std::uint64_t applied = 0; ///< messages it was applied to
};

/// The rules of a faults file: a list, or an object with the list as `faults`.
/// @throws std::runtime_error that says which rule is bad and why.
std::vector<Rule> rules_from (const nlohmann::json &json);

/// The rules of that file. @throws std::runtime_error that names the file and what is wrong in it.
std::vector<Rule> read_rules (const std::string &file);

} // namespace sim
