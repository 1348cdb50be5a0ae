#pragma once

#include "options.h"
#include "writer.h"

#include <string>
#include <vector>

namespace sim {

/// One thing that can be set. A value takes effect at once unless it needs a restart.
struct ConfigurationItem {
  std::string name;
  std::string access; ///< word of `ConfigurationItemAccess`
  std::string effective, boot, saved;
  std::vector<std::string> allowed; ///< empty: any text
  bool requires_reboot = false;
};

/// The settings of the server.
class Configuration {
public:
  explicit Configuration (const Options &options);

  const std::vector<ConfigurationItem> &items () const { return items_; }
  /// @throws Refusal with the code `configname_invalid`.
  const ConfigurationItem &find (const std::string &name) const;
  /// @throws Refusal with the code `configname_invalid` or `configvalue_invalid`.
  const ConfigurationItem &set (const std::string &name, const std::string &value);

private:
  std::vector<ConfigurationItem> items_;
};

void write_configuration_item (Writer &out, const ConfigurationItem &item);

} // namespace sim
