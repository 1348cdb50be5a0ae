#pragma once

#include <string_view>

namespace orvactl {

/// Whether a name fits a pattern: "*" is any text, "?" any character, "[a-z]" and "[!a-z]" one of some. A
/// letter is a whole character, also beyond ASCII.
bool fits (std::string_view pattern, std::string_view name);

} // namespace orvactl
