#include "wire.h"

#include <algorithm>
#include <pugixml.hpp>
#include <utf8.h>
#include <utility>

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
    const std::size_t plain = std::min (text.find ('&', 1), text.size ());
    const Entity *entity = text.front () == '&' ? entity_at (text) : nullptr;
    if (entity)
      result += entity->character;
    else
      result += text.substr (0, plain);
    text.remove_prefix (entity ? entity->name.size () : plain);
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
  held_.erase (0, taken_);
  searched_ -= std::exchange (taken_, 0);
  if (held_.empty ())
    held_.shrink_to_fit ();
  if (bytes.size () > most_bytes - held_.size ())
    throw Malformed ("the document is too long");
  held_ += bytes;
}

// The end of the first end tag of a root element, or npos when it has not come yet. No byte is searched
// twice.
std::size_t Framer::find_end () {
  constexpr std::string_view end_tag = "</cmd";
  while (searched_ < held_.size ()) {
    if (matched_ == 0)
      searched_ = std::min (held_.find (end_tag.front (), searched_), held_.size ());
    if (searched_ == held_.size ())
      break;
    const char c = held_[searched_++];
    if (matched_ == end_tag.size () && c == '>')
      return searched_;
    if (matched_ < end_tag.size () && c == end_tag[matched_])
      ++matched_;
    else if (matched_ < end_tag.size () || blanks.find (c) == blanks.npos)
      matched_ = c == end_tag.front () ? 1 : 0;
  }
  return held_.npos;
}

std::optional<std::string> Framer::next () {
  taken_ = std::min (held_.find_first_not_of (blanks, taken_), held_.size ());
  searched_ = std::max (searched_, taken_);
  if (!may_start_document (std::string_view (held_).substr (taken_)))
    throw Malformed ("no <cmd> where a document should start");
  const std::size_t end = find_end ();
  if (end == held_.npos)
    return std::nullopt;
  std::string document = held_.substr (taken_, end - taken_);
  taken_ = end;
  matched_ = 0;
  return document;
}

Element parse_document (std::string_view document) {
  if (!utf8::is_valid (document.data (), document.data () + document.size ()))
    throw Malformed ("the document is not UTF-8");
  if (document.find ('\0') != document.npos)
    throw Malformed ("the document has a zero byte");
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
  while (!text.empty ()) {
    const std::size_t plain = std::min (text.find_first_of ("'<>\"&"), text.size ());
    result += text.substr (0, plain);
    text.remove_prefix (plain);
    if (text.empty ())
      break;
    for (const Entity &entity : entities)
      if (entity.character == text.front ())
        result += entity.name;
    text.remove_prefix (1);
  }
  return result;
}

} // namespace sim
