#pragma once

#include "database.h"

#include <functional>
#include <string>

namespace sim {

/// The metadata databases, each a table of keys and values. A database that nobody has written to is empty.
class MetadataDatabases {
public:
  explicit MetadataDatabases (Database &database);

  /// Visits the pairs whose keys start with the prefix and are after `last`, in the order of the keys, until
  /// the visitor returns false. All keys are after the empty one.
  void each_after (const std::string &name, const std::string &prefix, const std::string &last,
                   const std::function<bool (const std::string &key, const std::string &value)> &visit) const;
  void set (const std::string &name, const std::string &key, const std::string &value);
  /// @return whether the key existed
  bool erase (const std::string &name, const std::string &key);

private:
  Database &database_;
};

} // namespace sim
