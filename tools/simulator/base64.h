#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

/// The bytes in base64, with padding.
std::string base64_of (std::string_view bytes);

/// The bytes that a base64 text stands for, or nothing when it is none.
std::optional<std::string> bytes_of_base64 (std::string_view text);

} // namespace sim
