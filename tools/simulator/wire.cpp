#include "wire.h"

#include <pugixml.hpp>

namespace sim {

namespace {

constexpr std::size_t most_bytes = 64u << 20;
constexpr int most_levels = 32;
constexpr std::string_view blanks = " \t\r\n";

struct Entity {
  char character;
  std::string_view name;
};
constexpr Entity entities[] = {
    {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'&', "&amp;"}};

bool is_continuation (unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// Bytes of the sequence that starts with this one; 0: none does.
std::size_t sequence_length (unsigned char first) {
  if (first < 0x80)
    return first == 0 ? 0 : 1;
  if (first >= 0xC2 && first < 0xE0)
    return 2;
  if (first >= 0xE0 && first < 0xF0)
    return 3;
  return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

bool is_second_byte (unsigned char first, unsigned char second) {
  if (first == 0xE0)
    return second >= 0xA0;
  if (first == 0xED)
    return second < 0xA0;
  if (first == 0xF0)
    return second >= 0x90;
  return first != 0xF4 || second < 0x90;
}

bool is_utf8 (std::string_view text) {
  for (std::size_t at = 0; at < text.size ();) {
    const auto first = static_cast<unsigned char> (text[at]);
    const std::size_t length = sequence_length (first);
    if (length == 0 || length > text.size () - at)
      return false;
    for (std::size_t i = 1; i < length; ++i)
      if (!is_continuation (static_cast<unsigned char> (text[at + i])))
        return false;
    if (length > 1 && !is_second_byte (first, static_cast<unsigned char> (text[at + 1])))
      return false;
    at += length;
  }
  return true;
}

const Entity *entity_at (std::string_view text) {
  for (const Entity &entity : entities)
    if (text.starts_with (entity.name))
      return &entity;
  return nullptr;
}

std::string unescaped (std::string_view text) {
  std::string result;
  result.reserve (text.size ());
  while (!text.empty ()) {
    const Entity *entity = text.front () == '&' ? entity_at (text) : nullptr;
    result += entity ? entity->character : text.front ();
    text.remove_prefix (entity ? entity->name.size () : 1);
  }
  return result;
}

bool is_blank (std::string_view text) {
  return text.find_first_not_of (blanks) == std::string_view::npos;
}

Element element_of (const pugi::xml_node &node, int level) {
  if (level > most_levels)
    throw Malformed ("elements are nested too deep");
  if (node.first_attribute ())
    throw Malformed ("an element has an attribute");
  Element element;
  element.name = node.name ();
  for (const pugi::xml_node &child : node.children ()) {
    if (child.type () == pugi::node_element)
      element.children.push_back (element_of (child, level + 1));
    else if (child.type () == pugi::node_pcdata)
      element.text += child.value ();
    else
      throw Malformed ("neither an element nor text");
  }
  if (element.children.empty ())
    element.text = unescaped (element.text);
  else if (!is_blank (element.text))
    throw Malformed ("text beside elements");
  else
    element.text.clear ();
  return element;
}

void write_canonical (const Element &element, std::string &out) {
  if (element.children.empty () && element.text.empty ()) {
    out += '<' + element.name + " />";
    return;
  }
  out += '<' + element.name + '>';
  for (const Element &child : element.children) {
    out += "\r\n";
    write_canonical (child, out);
  }
  out += element.children.empty () ? escaped (element.text) : "\r\n";
  out += "</" + element.name + '>';
}

// Where the first end tag of a root element ends, from a place on; npos: it is not there yet.
std::size_t end_of_root (std::string_view held, std::size_t from) {
  constexpr std::string_view end_tag = "</cmd";
  for (std::size_t at = held.find (end_tag, from); at != held.npos; at = held.find (end_tag, at + 1)) {
    const std::size_t close = held.find_first_not_of (blanks, at + end_tag.size ());
    if (close == held.npos)
      return close;
    if (held[close] == '>')
      return close + 1;
  }
  return held.npos;
}

bool may_start_document (std::string_view held) {
  constexpr std::string_view start = "<cmd";
  if (held.size () <= start.size ())
    return start.starts_with (held.substr (0, start.size ()));
  return held.starts_with (start) &&
         (held[start.size ()] == '>' || blanks.find (held[start.size ()]) != blanks.npos);
}

} // namespace

const Element *Element::child (std::string_view wanted) const {
  for (const Element &element : children)
    if (element.name == wanted)
      return &element;
  return nullptr;
}

void Framer::feed (std::string_view bytes) {
  if (bytes.size () > most_bytes - held_.size ())
    throw Malformed ("the document is too long");
  held_ += bytes;
}

std::optional<std::string> Framer::next () {
  const std::size_t start = std::min (held_.find_first_not_of (blanks), held_.size ());
  held_.erase (0, start);
  searched_ -= std::min (searched_, start);
  if (!may_start_document (held_))
    throw Malformed ("no <cmd> where a document should start");
  const std::size_t end = end_of_root (held_, searched_);
  if (end == held_.npos) {
    searched_ = std::min (held_.rfind ('<'), held_.size ());
    return std::nullopt;
  }
  std::string document = held_.substr (0, end);
  held_.erase (0, end);
  searched_ = 0;
  return document;
}

Element parse_document (std::string_view document) {
  if (!is_utf8 (document))
    throw Malformed ("the document is not UTF-8");
  constexpr unsigned everything = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata |
                                  pugi::parse_declaration | pugi::parse_doctype |
                                  pugi::parse_ws_pcdata_single;
  pugi::xml_document parsed;
  const pugi::xml_parse_result result =
      parsed.load_buffer (document.data (), document.size (), everything, pugi::encoding_utf8);
  if (!result)
    throw Malformed (result.description ());
  if (parsed.first_child () != parsed.last_child () || parsed.first_child ().type () != pugi::node_element)
    throw Malformed ("the document is not one element");
  return element_of (parsed.first_child (), 1);
}

std::string canonical_text (const Element &root) {
  std::string out;
  write_canonical (root, out);
  return out;
}

std::string escaped (std::string_view text) {
  std::string result;
  result.reserve (text.size ());
  for (const char c : text) {
    const Entity *found = nullptr;
    for (const Entity &entity : entities)
      if (entity.character == c)
        found = &entity;
    if (found)
      result += found->name;
    else
      result += c;
  }
  return result;
}

} // namespace sim
