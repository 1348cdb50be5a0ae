#pragma once

#include "values.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace sim {

// A client refuses messages of more than 32768 bytes. All sizes are those of the written text, where one
// character takes up to six bytes.
inline constexpr std::size_t longest_message = 32768;
inline constexpr std::size_t longest_identifier = 200;

/// The longest body: the rest of a message is left for the identifier and the outer tags.
inline constexpr std::size_t longest_body = 32500;

/// The longest name of a clip, a directory or a list: half of a message is left for the other contents.
inline constexpr std::size_t longest_name = 16000;

/// @throws Refusal when something of this written size is longer than it may be.
void check_size (std::string_view what, std::size_t size, std::size_t most = longest_body);

/// @throws Refusal when the name is too long.
void check_name_length (const std::string &name);

/// Returns the text, or its beginning and its end with dots between them when it has more than `most` bytes.
/// Never cuts within a character.
std::string shortened (std::string_view text, std::size_t most);

} // namespace sim
