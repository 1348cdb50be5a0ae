#include "faults/line.h"

#include "wire.h"

#include <fmt/format.h>
#include <utility>

namespace sim {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t most_owed = 10'000;
constexpr std::uint64_t usual_oversize = 40'000; // no message may be longer than 32768 bytes
constexpr std::uint64_t usual_piece = 1;

std::string error_reply (const Rule &rule, const std::string &xid) {
  return fmt::format ("<reply><xid>{}</xid><error><ErrorMessage>{}</ErrorMessage><ErrorCode>{}</ErrorCode>"
                      "</error></reply>",
                      escaped (xid), escaped (rule.text), escaped (rule.code));
}

// A body that ends other commands than this one.
std::string foreign_body (const Glance &message) {
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

bool makes_rule_stand (Fault fault) {
  return fault >= Fault::stop_reading;
}

} // namespace

bool Line::receive (std::string_view command) {
  if (faults_.none ()) {
    witness_.received (client_, command, {});
    return true;
  }
  const Glance glance = glance_at (command);
  const std::vector<Rule> rules = faults_.strike (glance, client_, address_);
  witness_.received (client_, command, rules);
  std::string refusal;
  for (const Rule &rule : rules) {
    if (makes_rule_stand (rule.fault))
      faults_.make_stand (rule, client_);
    over_ = over_ || rule.fault == Fault::go_away;
    if (rule.fault == Fault::refuse)
      refusal = error_reply (rule, glance.xid);
  }
  owe (glance.xid, rules);
  if (refusal.empty ())
    return true;
  send (refusal);
  return false;
}

void Line::owe (const std::string &xid, std::vector<Rule> rules) {
  owed_.erase (xid);
  if (rules.empty ())
    return;
  if (owed_.size () >= most_owed)
    owed_.erase (owed_.begin ());
  owed_[xid].rules = std::move (rules);
}

void Line::send (std::string_view message) {
  if (over_ || !endpoint_)
    return;
  witness_.sent (client_, message);
  if (faults_.none () && owed_.empty () && queue_.empty () && held_back_.empty ())
    return endpoint_->put (message);
  const Glance glance = glance_at (message);
  std::vector<Parcel> parcels (1);
  parcels.front ().bytes = message;
  for (const Rule &rule : rules_for (glance))
    bend (parcels, rule, glance);
  bool passes = false;
  for (Parcel &parcel : parcels) {
    passes = passes || !parcel.behind_next;
    dispatch (std::move (parcel));
  }
  if (passes && glance.root == "reply")
    release_held_back ();
}

std::vector<Rule> Line::rules_for (const Glance &message) {
  if (message.root == "report")
    return faults_.strike (message, client_, address_);
  const auto owed = owed_.find (message.xid);
  if (message.root != "reply" || owed == owed_.end ())
    return {};
  const std::uint64_t row = ++owed->second.rows;
  std::vector<Rule> rules;
  for (const Rule &rule : owed->second.rules)
    if (rule.row == row || rule.fault == Fault::no_answer)
      rules.push_back (rule);
  return rules;
}

void Line::bend (std::vector<Parcel> &parcels, const Rule &rule, const Glance &message) {
  if (parcels.empty ())
    return;
  Parcel &first = parcels.front ();
  switch (rule.fault) {
  case Fault::refuse:
    break;
  case Fault::delay:
    first.wait += milliseconds (faults_.random ().between (rule.ms.first, rule.ms.second));
    first.overtake = rule.overtake;
    break;
  case Fault::no_answer:
    parcels.clear ();
    break;
  case Fault::twice:
    parcels.push_back ({first.bytes});
    break;
  case Fault::out_of_order:
    first.behind_next = true;
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
    split (parcels, rule);
    break;
  case Fault::stop_reading:
  case Fault::freeze:
  case Fault::refuse_connections:
  case Fault::go_away:
    if (message.root == "report")
      faults_.make_stand (rule, client_);
    break;
  }
}

void Line::split (std::vector<Parcel> &parcels, const Rule &rule) {
  const Parcel whole = std::move (parcels.front ());
  const std::size_t size = rule.bytes.value_or (usual_piece);
  const milliseconds gap (faults_.random ().between (rule.ms.first, rule.ms.second));
  std::vector<Parcel> pieces;
  for (std::size_t at = 0; at == 0 || at < whole.bytes.size (); at += size)
    pieces.push_back ({whole.bytes.substr (at, size), gap});
  pieces.front ().wait = whole.wait;
  pieces.back ().after = whole.after;
  parcels.erase (parcels.begin ());
  parcels.insert (parcels.begin (), pieces.begin (), pieces.end ());
}

void Line::dispatch (Parcel parcel) {
  held_ += parcel.bytes.size ();
  if (parcel.behind_next) {
    held_back_.push_back (std::move (parcel));
  } else if (parcel.overtake && parcel.wait.count () > 0) {
    const auto timer = std::make_shared<asio::steady_timer> (context_, parcel.wait);
    parcel.wait = {};
    timer->async_wait (
        [self = shared_from_this (), timer, parcel] (const asio::error_code &) { self->enqueue (parcel); });
  } else {
    enqueue (std::move (parcel));
  }
}

void Line::enqueue (Parcel parcel) {
  queue_.push_back (std::move (parcel));
  pump ();
}

void Line::release_held_back () {
  for (Parcel &parcel : std::exchange (held_back_, {}))
    enqueue (std::move (parcel));
}

void Line::pump () {
  while (!queue_.empty () && !waiting_ && !over_ && endpoint_ && !frozen ()) {
    if (queue_.front ().wait.count () > 0)
      return wait_for_front ();
    Parcel parcel = std::move (queue_.front ());
    queue_.pop_front ();
    deliver (std::move (parcel));
  }
}

void Line::wait_for_front () {
  waiting_ = true;
  const auto timer = std::make_shared<asio::steady_timer> (context_, queue_.front ().wait);
  timer->async_wait ([self = shared_from_this (), timer] (const asio::error_code &) {
    self->waiting_ = false;
    if (!self->queue_.empty ())
      self->queue_.front ().wait = {};
    self->pump ();
  });
}

void Line::deliver (Parcel parcel) {
  held_ -= parcel.bytes.size ();
  if (!parcel.bytes.empty ())
    endpoint_->put (parcel.bytes);
  over_ = parcel.after != After::nothing;
  if (parcel.after == After::close)
    endpoint_->finish ();
  else if (parcel.after == After::reset)
    endpoint_->reset ();
}

bool Line::frozen () const {
  return faults_.stands (Fault::freeze, client_, address_);
}

bool Line::may_read () const {
  return !frozen () && !faults_.stands (Fault::stop_reading, client_, address_);
}

void Line::refresh () {
  if (!endpoint_)
    return;
  if (faults_.stands (Fault::reset, client_, address_)) {
    over_ = true;
    return endpoint_->reset ();
  }
  endpoint_->let_read (may_read ());
  pump ();
}

} // namespace sim
