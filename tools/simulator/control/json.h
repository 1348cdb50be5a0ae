#pragma once

#include "element.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace sim {

using Json = nlohmann::ordered_json;

/// Parses a text from outside. @throws std::exception when it is not JSON, or is nested too deep
Json parse_json (std::string_view text);

/// Returns a member that must be a whole number from 0 to `most`.
/// @throws std::runtime_error when it is missing or something else
std::uint64_t whole_number (const Json &json, const char *name, std::uint64_t most);

/// The text of a value. Bytes that are not UTF-8 are replaced.
std::string json_text (const Json &json);

/// An element as JSON: its text, or an object of its children. Several children of one name become a list.
Json json_of (const Element &element);

/// A body as JSON: `{"play": {"Channel": "A"}}`. The text itself when it cannot be parsed.
Json json_of_message (const std::string &body);

/// The element that a JSON value describes. Its children have the order of the JSON, and a list makes several
/// children of one name. @throws std::runtime_error for a name or a value that no element can have
Element element_of (const std::string &name, const Json &json);

/// The command that a JSON object describes. Its tags get the order of the grammar, whatever the order of the
/// JSON. The value of a list tag is a list. A flag that is `true` becomes an empty tag.
/// @throws std::runtime_error for an unknown command or tag
Element command_of_json (const std::string &name, const Json &arguments);

} // namespace sim
