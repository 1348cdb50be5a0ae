#pragma once

#include "faults/rule.h"
#include "random.h"

#include <asio.hpp>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace sim {

/// The faults of one server: the rules that are set, and which of them apply to a message. One thread.
class Faults {
public:
  Faults (asio::io_context &context, Random &random) : context_ (context), random_ (random) {}

  /// Sets a rule. @return its identifier
  int add (Rule rule);
  /// @return whether there was such a rule
  bool remove (int id);
  void clear ();

  /// In the order they were set.
  std::vector<Rule> rules () const;
  bool none () const { return rules_.empty (); }

  /// Returns the rules that apply to a command of this client or a report for it. Counts the message.
  std::vector<Rule> select_rules (const MessageSummary &message, int client, const std::string &address);

  /// Whether a lasting rule of that fault is in effect for this client.
  bool is_active (Fault fault, int client, const std::string &address) const;
  /// Whether a lasting rule of that fault is in effect, for any client.
  bool is_active (Fault fault) const;

  /// Starts the lasting effect of a rule that has been applied to a message of this client.
  void start_lasting (const Rule &rule, int client);

  Random &random () { return random_; }

  /// Is called by the event loop after rules have been added or removed.
  std::function<void ()> changed;

private:
  bool is_due (Rule &rule);
  void expire (int id, std::uint64_t after_ms);
  void announce ();

  asio::io_context &context_;
  Random &random_;
  std::map<int, Rule> rules_;
  std::map<int, asio::steady_timer> ends_;
  int last_id_ = 0;
};

} // namespace sim
