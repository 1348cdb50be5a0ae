#pragma once

#include "database.h"

#include <string>
#include <utility>
#include <vector>

namespace sim {

using Pairs = std::vector<std::pair<std::string, std::string>>; ///< keys and values

/// The metadata databases: tables of texts by name. One that is not yet there is empty.
class MetadataDatabases {
public:
  explicit MetadataDatabases (Database &database);

  /// All pairs whose keys start with the prefix, in the order of the keys.
  Pairs find (const std::string &name, const std::string &prefix) const;
  void set (const std::string &name, const std::string &key, const std::string &value);
  /// @return whether the key was there
  bool erase (const std::string &name, const std::string &key);

private:
  Database &database_;
};

} // namespace sim
