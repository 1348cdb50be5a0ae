#include "faults/faults.h"

namespace sim {

int Faults::add (Rule rule) {
  rule.id = ++last_id_;
  if (rule.is_lasting () && rule.fault == Fault::reset && !rule.for_ms)
    rule.for_ms = 0;
  if (rule.is_lasting () && rule.for_ms)
    expire (rule.id, *rule.for_ms);
  rules_.emplace (rule.id, std::move (rule));
  announce ();
  return last_id_;
}

bool Faults::remove (int id) {
  ends_.erase (id);
  if (rules_.erase (id) == 0)
    return false;
  announce ();
  return true;
}

void Faults::clear () {
  ends_.clear ();
  rules_.clear ();
  announce ();
}

std::vector<Rule> Faults::rules () const {
  std::vector<Rule> rules;
  for (const auto &[id, rule] : rules_)
    rules.push_back (rule);
  return rules;
}

std::vector<Rule> Faults::select_rules (const MessageSummary &message, int client,
                                        const std::string &address) {
  if (message.root.empty ())
    return {};
  std::vector<Rule> selected;
  for (auto &[id, rule] : rules_)
    if (rule.concerns (message) && rule.client.matches (client, address) && is_due (rule))
      selected.push_back (rule);
  return selected;
}

bool Faults::is_due (Rule &rule) {
  ++rule.seen;
  if (rule.applied >= rule.times || (rule.nth != 0 && rule.nth != rule.seen))
    return false;
  if (rule.chance < 1 && !random_.happens (rule.chance))
    return false;
  ++rule.applied;
  return true;
}

bool Faults::is_active (Fault fault, int client, const std::string &address) const {
  for (const auto &[id, rule] : rules_)
    if (rule.is_lasting () && rule.fault == fault && rule.client.matches (client, address))
      return true;
  return false;
}

bool Faults::is_active (Fault fault) const {
  for (const auto &[id, rule] : rules_)
    if (rule.is_lasting () && rule.fault == fault)
      return true;
  return false;
}

void Faults::start_lasting (const Rule &rule, int client) {
  Rule lasting;
  lasting.fault = rule.fault;
  lasting.for_ms = rule.for_ms;
  const bool about_one = rule.fault == Fault::stop_reading || rule.fault == Fault::freeze;
  if (about_one && !rule.everyone)
    lasting.client.text = std::to_string (client);
  add (std::move (lasting));
}

void Faults::expire (int id, std::uint64_t after_ms) {
  asio::steady_timer &timer = ends_.try_emplace (id, context_).first->second;
  timer.expires_after (std::chrono::milliseconds (after_ms));
  timer.async_wait ([this, id] (const asio::error_code &error) {
    if (!error)
      remove (id);
  });
}

void Faults::announce () {
  asio::post (context_, [this] {
    if (changed)
      changed ();
  });
}

} // namespace sim
