#pragma once

#include "clip.h"
#include "clock.h"
#include "database.h"
#include "random.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// The clips and directories of the server. A clip named `dir/name` is in the directory `dir`.
class Clips {
public:
  Clips (Database &database, const Clock &clock, Random &random);

  bool exists (const std::string &id) const;
  bool directory_exists (const std::string &name) const;
  std::int64_t count () const;

  /// The clip of that name. @throws Refusal with the code `clipnotfound` when there is none.
  Clip find (const std::string &id) const;

  // The names after a name, in order, at most `most` of them. The empty name is before all others. With a
  // directory, only the names that are directly in it.
  using Directory = std::optional<std::string>;
  std::vector<std::string> names_after (const std::string &last, const Directory &directory, int most) const;
  std::vector<std::string> directories_after (const std::string &last, const Directory &directory,
                                              int most) const;

  // All names in a directory, at any depth.
  std::vector<std::string> names_below (const std::string &directory) const;
  std::vector<std::string> directories_below (const std::string &directory) const;

  /// A read-only clip in a directory, at any depth, if there is one.
  std::optional<std::string> locked_below (const std::string &directory) const;

  /// Is called for each clip before `find` returns it. It adds changes that are not stored yet.
  std::function<void (Clip &)> amend;

  /// The sum of the stored lengths of all clips, in fields.
  std::int64_t fields () const { return fields_; }

  /// Adds a new clip and sets its identifier and stamps. @throws Refusal when the name is bad or in use.
  void add (Clip clip);
  /// The same without checks. The name must be valid and not in use.
  void add_unchecked (Clip clip);
  /// Stores a changed clip.
  void store (const Clip &clip);
  void remove (const std::string &id);
  /// @throws Refusal when a name is unknown, bad or in use.
  void rename (const std::string &from, const std::string &to);
  void add_directory (const std::string &name);
  /// Renames the directory only. The clips and directories in it keep their names.
  void rename_directory (const std::string &from, const std::string &to);

  /// Sets one of the stamps, named by its column, to the present time. Does nothing when the clip does not
  /// exist. A stamp that cannot be stored now is stored later.
  void touch (const std::string &id, std::string_view column);
  void store_late_stamps ();

  /// Milliseconds since 1970. Each call returns a larger number.
  std::int64_t stamp ();

  /// Makes several changes of clips one change: the destructor undoes them unless `finish` was called.
  class Change {
  public:
    explicit Change (Clips &clips)
        : clips_ (clips), fields_ (clips.fields_), transaction_ (clips.database_) {}
    Change (const Change &) = delete;
    Change &operator= (const Change &) = delete;
    ~Change () {
      if (!finished_)
        clips_.fields_ = fields_;
    }
    void finish () {
      transaction_.finish ();
      finished_ = true;
    }

  private:
    Clips &clips_;
    const std::int64_t fields_;
    Transaction transaction_;
    bool finished_ = false;
  };

private:
  void check_new_name (const std::string &name) const;
  void insert (const Clip &clip);
  void write_pairs (const Clip &clip);
  std::vector<std::string> column (Rows rows) const;

  Database &database_;
  const Clock &clock_;
  Random &random_;
  struct Stamp {
    std::string clip;
    std::string column;
    std::int64_t time;
  };
  std::deque<Stamp> late_stamps_;
  std::int64_t last_stamp_ = 0;
  std::int64_t fields_ = 0;
};

/// A new universally unique identifier, as text.
std::string new_uuid (Random &random);

} // namespace sim
