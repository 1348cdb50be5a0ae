#pragma once

#include "database.h"
#include "items.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace sim {

/// The lists that are stored on the server, of both kinds.
class Lists {
public:
  explicit Lists (Database &database);

  bool exists (const ListKind &kind, const std::string &id) const;
  /// The names after a name, in order, at most `most` of them, or all when `most` is negative. The empty name
  /// is before all others.
  std::vector<std::string> names_after (const ListKind &kind, const std::string &last, int most) const;

  /// The items of a list. @throws Refusal when there is no such list.
  std::vector<Item> find (const ListKind &kind, const std::string &id) const;

  /// The items of a list from index `first` on, at most `most` of them, or all when `most` is negative.
  /// @throws Refusal when there is no such list.
  std::vector<Item> items_from (const ListKind &kind, const std::string &id, std::int64_t first,
                                int most) const;

  /// How often that list has been changed. A caller that reads a list in parts compares two of these numbers
  /// to notice a change between the parts.
  std::uint64_t changes (const ListKind &kind, const std::string &id) const;

  /// Stores a list under a name. It replaces a list of that name.
  void store (const ListKind &kind, const std::string &id, const std::vector<Item> &items);
  /// @throws Refusal when there is no such list.
  void remove (const ListKind &kind, const std::string &id);
  /// @throws Refusal when there is no list `from`, or when `to` is empty, too long or in use.
  void rename (const ListKind &kind, const std::string &from, const std::string &to);

private:
  void check_exists (const ListKind &kind, const std::string &id) const;

  Database &database_;
  std::map<std::pair<std::int64_t, std::string>, std::uint64_t> changes_;
};

} // namespace sim
