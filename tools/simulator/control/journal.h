#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sim {

/// The last commands of all clients with their answers, and the last reports. Its size is limited: when it is
/// full, the oldest are removed. One thread.
class Journal {
public:
  struct Entry {
    std::uint64_t mark = 0;        ///< number of the command, from 1
    std::int64_t milliseconds = 0; ///< since 1970, by the server's clock
    int client = 0;
    std::string xid;
    std::string command;              ///< the whole document
    std::vector<std::string> faults;  ///< names of the faults that were applied to it
    std::vector<std::string> answers; ///< the messages that the server made, before any fault
    std::size_t left_out = 0;         ///< messages of a long answer that are not kept
  };

  void add (int client, std::int64_t milliseconds, std::string_view command, std::vector<std::string> faults);
  /// Adds a message to this client. A reply is kept with its command, a report by itself. Reports of
  /// positions are not kept, because they are so many that they would soon replace all others.
  void add_sent (int client, std::int64_t milliseconds, std::string_view message);

  /// A report that was sent, before any fault.
  struct Report {
    std::uint64_t mark = 0;        ///< number of the report, from 1
    std::int64_t milliseconds = 0; ///< since 1970, by the server's clock
    int client = 0;
    std::string message; ///< the whole document
  };
  /// The number of the last report.
  std::uint64_t report_mark () const { return last_report_; }
  /// The reports after a mark that are still kept, the oldest first.
  std::vector<const Report *> reports_since (std::uint64_t mark) const;

  /// The number of the last command.
  std::uint64_t mark () const { return last_mark_; }
  /// The commands after a mark that are still kept, the oldest first.
  std::vector<const Entry *> since (std::uint64_t mark) const;
  /// Removes everything. The numbers go on.
  void clear ();

private:
  void answer (int client, std::string_view message);
  void add_report (int client, std::int64_t milliseconds, std::string_view message);
  Entry *find (std::uint64_t mark);
  void shorten ();

  std::deque<Entry> entries_;
  std::map<std::pair<int, std::string>, std::uint64_t> open_; ///< client and identifier: its last mark
  std::uint64_t last_mark_ = 0;
  std::size_t bytes_ = 0;
  std::deque<Report> reports_;
  std::uint64_t last_report_ = 0;
  std::size_t report_bytes_ = 0;
};

} // namespace sim
