#pragma once

#include "database.h"
#include "items.h"

#include <string>
#include <vector>

namespace sim {

/// The lists that are stored on the server, of both kinds.
class Lists {
public:
  explicit Lists (Database &database);

  bool exists (const ListKind &kind, const std::string &id) const;
  std::vector<std::string> names (const ListKind &kind) const;

  /// The items of a list. @throws Refusal when there is no such list.
  std::vector<Item> find (const ListKind &kind, const std::string &id) const;

  /// Stores a list under a name, in the place of one that is there.
  void store (const ListKind &kind, const std::string &id, const std::vector<Item> &items);
  /// @throws Refusal when there is no such list.
  void remove (const ListKind &kind, const std::string &id);
  /// @throws Refusal when one name is unknown, or the other taken or empty.
  void rename (const ListKind &kind, const std::string &from, const std::string &to);

private:
  void check_exists (const ListKind &kind, const std::string &id) const;

  Database &database_;
};

} // namespace sim
