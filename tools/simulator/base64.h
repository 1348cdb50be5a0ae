#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

/// The bytes in base64, with padding.
std::string base64_of (std::string_view bytes);

/// Decodes a base64 text. Returns nothing when the text is not base64.
std::optional<std::string> bytes_of_base64 (std::string_view text);

} // namespace sim
