#include "control/json.h"

#include "vocabulary.h"
#include "wire.h"

#include <algorithm>
#include <fmt/format.h>
#include <stdexcept>

namespace sim {

namespace {

constexpr int most_levels = 32;

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

bool is_name (const std::string &name) {
  const auto is_letter = [] (char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
  return !name.empty () && is_letter (name[0]) && std::all_of (name.begin (), name.end (), [&] (char c) {
    return is_letter (c) || (c >= '0' && c <= '9');
  });
}

std::string text_of (const Json &json) {
  if (json.is_string ())
    return json.get<std::string> ();
  if (json.is_null ())
    return "";
  return json.dump ();
}

void add_children (Element &parent, const std::string &name, const Json &value) {
  if (!value.is_array ()) {
    parent.children.push_back (element_of (name, value));
    return;
  }
  for (const Json &entry : value)
    parent.children.push_back (element_of (name, entry));
}

Element tag_of_json (const Tag &tag, const std::string &name, const Json &value);

// Adds the members of an object in the order of these parts.
void add_parts (Element &parent, const std::vector<Part> &parts, const Json &members) {
  if (!members.is_object () && !members.is_null ())
    refuse (fmt::format ("what {} holds is not an object", parent.name));
  for (const auto &[name, value] : members.items ())
    if (std::none_of (parts.begin (), parts.end (), [&] (const Part &part) { return part.name == name; }))
      refuse (fmt::format ("{} has no {}", parent.name, name));
  for (const Part &part : parts) {
    const std::string name (part.name);
    const Tag *tag = find_tag (name);
    if (tag && members.is_object () && members.contains (name) && members[name] != Json (false))
      parent.children.push_back (tag_of_json (*tag, name, members[name]));
    else if (tag && members.is_object () && members.contains (name) && tag->form == Form::boolean)
      parent.children.push_back (element_of (name, members[name]));
  }
}

Element tag_of_json (const Tag &tag, const std::string &name, const Json &value) {
  Element element;
  element.name = name;
  if (tag.form == Form::record)
    add_parts (element, tag.parts, value);
  else if (tag.form == Form::list && value.is_array ())
    for (const Json &entry : value)
      element.children.push_back (
          tag_of_json (*find_tag (tag.parts.front ().name), std::string (tag.parts.front ().name), entry));
  else if (tag.form != Form::flag)
    element = element_of (name, value);
  return element;
}

} // namespace

Json parse_json (std::string_view text) {
  const auto check_depth = [] (int depth, Json::parse_event_t, Json &) {
    if (depth > most_levels)
      refuse ("the JSON is nested too deep");
    return true;
  };
  return Json::parse (text, check_depth);
}

std::uint64_t whole_number (const Json &json, const char *name, std::uint64_t most) {
  const auto found = json.find (name);
  if (found == json.end () || !found->is_number_unsigned () || found->get<std::uint64_t> () > most)
    refuse (fmt::format ("the member \"{}\" is not a whole number from 0 to {}", name, most));
  return found->get<std::uint64_t> ();
}

std::string json_text (const Json &json) {
  return json.dump (-1, ' ', false, Json::error_handler_t::replace);
}

Json json_of (const Element &element) {
  if (element.children.empty ())
    return element.text;
  Json object = Json::object ();
  for (const Element &child : element.children) {
    if (!object.contains (child.name)) {
      object[child.name] = json_of (child);
      continue;
    }
    Json &present = object[child.name];
    if (!present.is_array ())
      present = Json::array ({present});
    present.push_back (json_of (child));
  }
  return object;
}

Json json_of_message (const std::string &body) {
  try {
    const Element element = parse_document (body);
    return {{element.name, json_of (element)}};
  } catch (const Malformed &) {
    return body;
  }
}

Element element_of (const std::string &name, const Json &json) {
  if (!is_name (name))
    refuse (fmt::format ("'{}' is not a valid name of an element", name));
  Element element;
  element.name = name;
  if (json.is_object ())
    for (const auto &[child, value] : json.items ())
      add_children (element, child, value);
  else if (json.is_array ())
    refuse (fmt::format ("{} cannot hold a list", name));
  else
    element.text = text_of (json);
  return element;
}

Element command_of_json (const std::string &name, const Json &arguments) {
  const Grammar *grammar = find_command (name);
  if (!grammar)
    refuse (fmt::format ("there is no command '{}'", name));
  Element command;
  command.name = name;
  add_parts (command, grammar->parts, arguments);
  return command;
}

} // namespace sim
