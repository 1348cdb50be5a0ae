#pragma once

#include "element.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace sim {

using Json = nlohmann::ordered_json;

/// Parses a text from outside. @throws std::runtime_error for what is no JSON, or nested too deep
Json parse_json (std::string_view text);

/// A member that is a whole number from 0 to `most`. @throws std::runtime_error when it is missing or not
/// that
std::uint64_t whole_number (const Json &json, const char *name, std::uint64_t most);

/// The text of a value. Bytes that are not UTF-8 are replaced.
std::string json_text (const Json &json);

/// An element as JSON: its text, or an object of its children; children of one name become a list.
Json json_of (const Element &element);

/// A message as JSON: `{"play": {"Channel": "A"}}`; its text when it cannot be read.
Json json_of_message (const std::string &body);

/// An element in the order that the JSON has. A list repeats the element, `true` of a flag is an empty one.
/// @throws std::runtime_error for a name or a value that no element can have
Element element_of (const std::string &name, const Json &json);

/// A command: its tags in the order of its grammar, whatever order they are given in; a tag that holds a list
/// takes a list of values. @throws std::runtime_error for an unknown command or tag
Element command_of_json (const std::string &name, const Json &arguments);

} // namespace sim
