#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// One element of a document: children or text, never both.
struct Element {
  std::string name;
  std::string text;
  std::vector<Element> children;

  /// The first child of that name, or null.
  const Element *child (std::string_view wanted) const;
};

} // namespace sim
