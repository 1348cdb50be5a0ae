#include "faults/fault_injector.h"

#include "wire.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace sim {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t most_pending = 10'000;
constexpr std::uint64_t usual_oversize = 40'000; // no message may be longer than 32768 bytes
constexpr std::uint64_t usual_piece = 1;
constexpr std::uint64_t usual_hold = 10'000; // milliseconds that an answer waits for the next one

std::string error_reply (const Rule &rule, const std::string &xid) {
  return fmt::format ("<reply><xid>{}</xid><error><ErrorMessage>{}</ErrorMessage><ErrorCode>{}</ErrorCode>"
                      "</error></reply>",
                      escaped (xid), escaped (rule.text), escaped (rule.code));
}

// A body that does not belong to the command of this message.
std::string foreign_body (const MessageSummary &message) {
  return message.name == "ok" ? "<computername><ComputerName>WRONG</ComputerName></computername>" : "<ok />";
}

std::string with_inserted (std::string_view message, std::string_view text) {
  const std::size_t end = std::min (message.rfind ("</"), message.size ());
  std::string result (message.substr (0, end));
  return result.append (text).append (message.substr (end));
}

std::string padded (std::string_view message, std::uint64_t bytes) {
  constexpr std::string_view open = "<Padding>", close = "</Padding>";
  const std::uint64_t least = message.size () + open.size () + close.size ();
  std::string padding (open);
  padding.append (bytes > least ? bytes - least : 0, 'x').append (close);
  return with_inserted (message, padding);
}

bool starts_lasting_rule (Fault fault) {
  return fault >= Fault::stop_reading;
}

} // namespace

void FaultInjector::detach () {
  endpoint_ = nullptr;
  timers_.clear ();
}

bool FaultInjector::receive (std::string_view command) {
  if (faults_.none ()) {
    observer_.received (client_, command, {});
    return true;
  }
  const MessageSummary summary = summary_of (command);
  const std::vector<Rule> rules = faults_.select_rules (summary, client_, address_);
  observer_.received (client_, command, rules);
  std::string refusal;
  for (const Rule &rule : rules) {
    if (starts_lasting_rule (rule.fault))
      faults_.start_lasting (rule, client_);
    over_ = over_ || rule.fault == Fault::go_away;
    if (rule.fault == Fault::refuse)
      refusal = error_reply (rule, summary.xid);
  }
  remember (summary.xid, rules);
  if (refusal.empty ())
    return true;
  send (refusal);
  return false;
}

void FaultInjector::remember (const std::string &xid, std::vector<Rule> rules) {
  pending_.erase (xid);
  if (rules.empty ())
    return;
  if (pending_.size () >= most_pending)
    pending_.erase (pending_.begin ());
  pending_[xid].rules = std::move (rules);
}

void FaultInjector::send (std::string_view message) {
  if (over_ || !endpoint_)
    return;
  observer_.sent (client_, message);
  if (faults_.none () && pending_.empty () && queue_.empty () && held_back_.empty ())
    return endpoint_->put (message);
  const MessageSummary summary = summary_of (message);
  std::vector<QueuedBytes> outgoing (1);
  outgoing.front ().bytes = message;
  for (const Rule &rule : rules_for (summary))
    apply (outgoing, rule, summary);
  bool passes = false;
  for (QueuedBytes &bytes : outgoing) {
    passes = passes || !bytes.after_next_answer;
    dispatch (std::move (bytes));
  }
  if (passes && summary.root == "reply")
    release_held_back ();
}

std::vector<Rule> FaultInjector::rules_for (const MessageSummary &message) {
  if (message.root == "report")
    return faults_.select_rules (message, client_, address_);
  const auto pending = pending_.find (message.xid);
  if (message.root != "reply" || pending == pending_.end ())
    return {};
  const std::uint64_t row = ++pending->second.rows;
  std::vector<Rule> rules;
  for (const Rule &rule : pending->second.rules)
    if (rule.row == row || rule.fault == Fault::no_answer)
      rules.push_back (rule);
  return rules;
}

void FaultInjector::apply (std::vector<QueuedBytes> &outgoing, const Rule &rule,
                           const MessageSummary &message) {
  if (outgoing.empty ())
    return;
  QueuedBytes &first = outgoing.front ();
  switch (rule.fault) {
  case Fault::refuse:
    break;
  case Fault::delay:
    first.wait += milliseconds (faults_.random ().between (rule.ms.first, rule.ms.second));
    first.overtake = rule.overtake;
    break;
  case Fault::no_answer:
    outgoing.clear ();
    break;
  case Fault::twice:
    outgoing.push_back ({first.bytes});
    break;
  case Fault::out_of_order:
    first.after_next_answer = true;
    first.most_wait = milliseconds (rule.for_ms.value_or (usual_hold));
    break;
  case Fault::wrong_kind:
    first.bytes = fmt::format ("<reply><xid>{}</xid>{}</reply>", escaped (message.xid),
                               rule.body.value_or (foreign_body (message)));
    break;
  case Fault::malformed:
    first.bytes = rule.message.value_or (with_inserted (first.bytes, "</wrong>"));
    break;
  case Fault::oversized:
    first.bytes = padded (first.bytes, rule.bytes.value_or (usual_oversize));
    break;
  case Fault::cut:
    first.bytes.resize (
        std::min<std::size_t> (rule.bytes.value_or (first.bytes.size () / 2), first.bytes.size ()));
    first.after = After::close;
    break;
  case Fault::reset:
    first.bytes.clear ();
    first.after = After::reset;
    break;
  case Fault::pieces:
    split (outgoing, rule);
    break;
  case Fault::stop_reading:
  case Fault::freeze:
  case Fault::refuse_connections:
  case Fault::go_away:
    if (message.root == "report")
      faults_.start_lasting (rule, client_);
    break;
  }
}

void FaultInjector::split (std::vector<QueuedBytes> &outgoing, const Rule &rule) {
  const QueuedBytes whole = std::move (outgoing.front ());
  const std::size_t size = rule.bytes.value_or (usual_piece);
  // Without a gap the next piece would be sent together with this one.
  const milliseconds gap (
      std::max<std::uint64_t> (1, faults_.random ().between (rule.ms.first, rule.ms.second)));
  std::vector<QueuedBytes> pieces;
  for (std::size_t at = 0; at == 0 || at < whole.bytes.size (); at += size)
    pieces.push_back ({whole.bytes.substr (at, size), gap});
  pieces.front ().wait = whole.wait;
  pieces.back ().after = whole.after;
  outgoing.erase (outgoing.begin ());
  outgoing.insert (outgoing.begin (), pieces.begin (), pieces.end ());
}

void FaultInjector::dispatch (QueuedBytes bytes) {
  held_ += bytes.bytes.size ();
  if (bytes.after_next_answer) {
    hold_back (std::move (bytes));
  } else if (bytes.overtake && bytes.wait.count () > 0) {
    const milliseconds wait = std::exchange (bytes.wait, milliseconds (0));
    call_later (wait, [this, bytes = std::move (bytes)] { enqueue (bytes); });
  } else {
    enqueue (std::move (bytes));
  }
}

// Calls the action after a while, unless the connection has ended before that.
void FaultInjector::call_later (milliseconds wait, std::function<void ()> action) {
  const auto timer = timers_.emplace (timers_.end (), context_, wait);
  timer->async_wait (
      [self = shared_from_this (), timer, action = std::move (action)] (const asio::error_code &error) {
        if (error || !self->endpoint_)
          return;
        self->timers_.erase (timer);
        action ();
      });
}

void FaultInjector::enqueue (QueuedBytes bytes) {
  queue_.push_back (std::move (bytes));
  send_queued ();
}

// Keeps a message until the next answer. Without another answer it is sent after a while, so that it is not
// lost.
void FaultInjector::hold_back (QueuedBytes bytes) {
  const milliseconds limit = bytes.most_wait;
  held_back_.push_back (std::move (bytes));
  if (held_back_.size () == 1)
    call_later (limit, [this, round = held_back_round_] {
      if (round == held_back_round_)
        release_held_back ();
    });
}

void FaultInjector::release_held_back () {
  ++held_back_round_;
  for (QueuedBytes &bytes : std::exchange (held_back_, {}))
    enqueue (std::move (bytes));
}

void FaultInjector::send_queued () {
  while (!queue_.empty () && !waiting_ && !over_ && endpoint_ && !frozen ()) {
    if (queue_.front ().wait.count () > 0)
      return wait_for_front ();
    QueuedBytes bytes = std::move (queue_.front ());
    queue_.pop_front ();
    deliver (std::move (bytes));
  }
}

void FaultInjector::wait_for_front () {
  waiting_ = true;
  call_later (queue_.front ().wait, [this] {
    waiting_ = false;
    queue_.front ().wait = {};
    send_queued ();
  });
}

void FaultInjector::deliver (QueuedBytes bytes) {
  held_ -= bytes.bytes.size ();
  if (!bytes.bytes.empty ())
    endpoint_->put (bytes.bytes);
  over_ = bytes.after != After::nothing;
  if (bytes.after == After::close)
    endpoint_->finish ();
  else if (bytes.after == After::reset)
    endpoint_->reset ();
}

bool FaultInjector::frozen () const {
  return faults_.is_active (Fault::freeze, client_, address_);
}

bool FaultInjector::may_read () const {
  return !frozen () && !faults_.is_active (Fault::stop_reading, client_, address_);
}

void FaultInjector::refresh () {
  if (!endpoint_)
    return;
  if (faults_.is_active (Fault::reset, client_, address_)) {
    over_ = true;
    return endpoint_->reset ();
  }
  endpoint_->allow_reading (may_read ());
  send_queued ();
}

} // namespace sim
