#include "control/journal.h"

#include "faults/message_summary.h"

namespace sim {

namespace {

constexpr std::size_t most_entries = 10'000;
constexpr std::size_t most_bytes = 16u << 20;
constexpr std::size_t most_answers = 100;

std::size_t size_of (const Journal::Entry &entry) {
  std::size_t size = entry.command.size () + sizeof entry;
  for (const std::string &answer : entry.answers)
    size += answer.size ();
  return size;
}

std::size_t size_of (const Journal::Report &report) {
  return report.message.size () + sizeof report;
}

// The identifier of a reply. Empty when the message does not begin with `<reply><xid>`.
std::string identifier_of (std::string_view message) {
  constexpr std::string_view open = "<reply><xid>", close = "</xid>";
  const std::size_t end = message.find (close);
  if (!message.starts_with (open) || end == message.npos)
    return "";
  return std::string (message.substr (open.size (), end - open.size ()));
}

} // namespace

void Journal::add (int client, std::int64_t milliseconds, std::string_view command,
                   std::vector<std::string> faults) {
  Entry entry;
  entry.mark = ++last_mark_;
  entry.milliseconds = milliseconds;
  entry.client = client;
  entry.xid = summary_of (command).xid;
  entry.command = command;
  entry.faults = std::move (faults);
  open_[{client, entry.xid}] = entry.mark;
  bytes_ += size_of (entry);
  entries_.push_back (std::move (entry));
  shorten ();
}

void Journal::add_sent (int client, std::int64_t milliseconds, std::string_view message) {
  if (message.starts_with ("<reply>"))
    answer (client, message);
  else if (!message.starts_with ("<report><channel_timecode>") &&
           !message.starts_with ("<report><channel_aux_audio_timecode>"))
    add_report (client, milliseconds, message);
}

void Journal::add_report (int client, std::int64_t milliseconds, std::string_view message) {
  reports_.push_back ({++last_report_, milliseconds, client, std::string (message)});
  report_bytes_ += size_of (reports_.back ());
  while (reports_.size () > most_entries || (report_bytes_ > most_bytes && reports_.size () > 1)) {
    report_bytes_ -= size_of (reports_.front ());
    reports_.pop_front ();
  }
}

std::vector<const Journal::Report *> Journal::reports_since (std::uint64_t mark) const {
  std::vector<const Report *> found;
  for (const Report &report : reports_)
    if (report.mark > mark)
      found.push_back (&report);
  return found;
}

void Journal::answer (int client, std::string_view message) {
  const auto open = open_.find ({client, identifier_of (message)});
  if (open == open_.end ())
    return;
  Entry *entry = find (open->second);
  if (!entry)
    return;
  if (entry->answers.size () >= most_answers) {
    ++entry->left_out;
    return;
  }
  entry->answers.emplace_back (message);
  bytes_ += message.size ();
  shorten ();
}

std::vector<const Journal::Entry *> Journal::since (std::uint64_t mark) const {
  std::vector<const Entry *> found;
  for (const Entry &entry : entries_)
    if (entry.mark > mark)
      found.push_back (&entry);
  return found;
}

void Journal::clear () {
  entries_.clear ();
  open_.clear ();
  bytes_ = 0;
  reports_.clear ();
  report_bytes_ = 0;
}

Journal::Entry *Journal::find (std::uint64_t mark) {
  if (entries_.empty () || mark < entries_.front ().mark)
    return nullptr;
  return &entries_[mark - entries_.front ().mark];
}

void Journal::shorten () {
  while (entries_.size () > most_entries || (bytes_ > most_bytes && entries_.size () > 1)) {
    const Entry &oldest = entries_.front ();
    bytes_ -= size_of (oldest);
    if (const auto open = open_.find ({oldest.client, oldest.xid});
        open != open_.end () && open->second == oldest.mark)
      open_.erase (open);
    entries_.pop_front ();
  }
}

} // namespace sim
