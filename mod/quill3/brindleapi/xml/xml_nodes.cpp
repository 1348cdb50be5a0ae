#include "xml/xml_nodes.h"

#include "xml/xml_children.h"
#include "xml/xml_parse.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// One character stands for each code point: ASCII for itself, and these two for all others.
constexpr char other_mark = '\x80';
constexpr char space_mark = '\x81'; // a code point from 256 up, which is white space

enum Class : uint8_t { space = 1, letter = 2, name_part = 4, bracket = 8 };

constexpr std::array<uint8_t, 256> make_classes () {
  std::array<uint8_t, 256> classes{};
  for (unsigned i = 0; i != 128; ++i) {
    const AChar c (static_cast<char> (i));
    const bool alnum = c.is_alnum ();
    classes[i] =
        static_cast<uint8_t> ((c.is_space () ? space : 0) | (alnum && !c.is_digit () ? letter : 0) |
                              (alnum || i == '_' ? name_part : 0) | (i == '<' || i == '>' ? bracket : 0));
  }
  classes[static_cast<unsigned char> (space_mark)] = space;
  return classes;
}

bool is (char c, Class wanted) {
  static constexpr std::array<uint8_t, 256> classes = make_classes ();
  return (classes[static_cast<unsigned char> (c)] & wanted) != 0;
}

// ASCII without NUL. In a word of such bytes, neither a byte nor one less than it has its highest bit set.
bool is_plain (std::string_view bytes) {
  constexpr uint64_t ones = 0x0101010101010101, highest = 0x8080808080808080;
  uint64_t word = 0;
  for (; bytes.size () >= sizeof word; bytes.remove_prefix (sizeof word)) {
    std::memcpy (&word, bytes.data (), sizeof word);
    if ((((word - ones) | word) & highest) != 0)
      return false;
  }
  return std::all_of (bytes.begin (), bytes.end (), [] (char c) { return static_cast<signed char> (c) > 0; });
}

} // namespace

/// One text on its way into the nodes.
class XMLTokeniser {
public:
  XMLTokeniser (XMLNodes &nodes, std::string_view text)
      : names_ (nodes.names_), nodes_ (nodes.nodes_), begin_ (text.data ()), at_ (begin_),
        end_ (begin_ + text.size ()) {
    nodes_.clear ();
    while (end_ != at_ && is (end_[-1], space))
      --end_;
  }

  // The last character is '>', so what stops there need not look for the end.
  bool run () {
    if (at_ == end_ || end_[-1] != '>')
      return false;
    while (at_ != end_)
      if (!take_text () || !take_tag ())
        return false;
    return !nodes_.empty () && open_ == none;
  }

private:
  static constexpr uint32_t none = UINT32_MAX;

  bool take_text () {
    text_ = at_;
    skip_space ();
    blank_ = is (*at_, bracket);
    while (!is (*at_, bracket))
      ++at_;
    return open_ != none || blank_;
  }

  // Refuses attributes, comments and declarations: between the brackets is a name, and a slash on one side of
  // it. C84: doc/compatibility.md
  bool take_tag () {
    if (*at_++ != '<')
      return false;
    const char *const text_end = at_ - 1;
    const bool closes = take_slash ();
    if (!(closes ? take_open_name () : take_name ()))
      return false;
    const bool empties = take_slash ();
    if (*at_++ != '>' || (closes && empties))
      return false;
    if (closes)
      return close (text_end);
    return open () && (!empties || close_empty ());
  }

  bool take_slash () {
    skip_space ();
    if (*at_ != '/')
      return false;
    ++at_;
    skip_space ();
    return true;
  }
  void skip_space () {
    while (is (*at_, space))
      ++at_;
  }

  bool take_name () {
    const char *const first = at_;
    while (is (*at_, name_part))
      ++at_;
    name_ = {first, static_cast<size_t> (at_ - first)};
    return !name_.empty () && is (name_[0], letter);
  }
  // The name of the innermost open element, and nothing else.
  bool take_open_name () {
    if (open_ == none)
      return false;
    const XMLNodes::Node &node = nodes_[open_];
    const char *const name = begin_ + node.name_first;
    for (uint32_t i = 0; i != node.name_length; ++i) // names are too short for a call of memcmp
      if (*at_++ != name[i])
        return false;
    return !is (*at_, name_part);
  }

  // Between children there is nothing but blanks. C86: doc/compatibility.md
  bool open () {
    if (!blank_ || (open_ == none && !nodes_.empty ()))
      return false;
    const auto number = static_cast<uint32_t> (nodes_.size ());
    XMLNodes::Node &node = nodes_.emplace_back ();
    node.name = names_ != nullptr ? names_->find (name_) : XMLNameTable::unknown;
    node.name_first = place (name_.data ());
    node.name_length = static_cast<uint32_t> (name_.size ());
    node.end = open_; // where to go back to, until it is closed
    open_ = number;
    return true;
  }

  bool close (const char *text_end) {
    const bool is_leaf = open_ + 1 == nodes_.size ();
    if (is_leaf) {
      nodes_[open_].text_first = place (text_);
      nodes_[open_].text_length = static_cast<uint32_t> (text_end - text_);
    }
    return (is_leaf || blank_) && close_empty ();
  }
  bool close_empty () {
    XMLNodes::Node &node = nodes_[open_];
    open_ = std::exchange (node.end, static_cast<uint32_t> (nodes_.size ()));
    return true;
  }

  uint32_t place (const char *c) const { return static_cast<uint32_t> (c - begin_); }

  const XMLNameTable *names_;
  std::vector<XMLNodes::Node> &nodes_;
  const char *begin_, *at_, *end_;
  const char *text_ = nullptr; ///< in front of the tag in hand
  bool blank_ = true;          ///< whether that is nothing but blanks
  std::string_view name_;      ///< of the opening tag in hand
  uint32_t open_ = none;       ///< the innermost open element
};

bool XMLNodes::tokenise (Source source, std::string_view text) {
  source_ = source;
  const bool accepted = text.size () < UINT32_MAX && XMLTokeniser (*this, text).run ();
  if (!accepted)
    nodes_.clear ();
  return accepted;
}

void XMLNodes::add_class (AChar c) {
  classes_ += c.is_ascii () ? static_cast<char> (c.value ()) : c.is_space () ? space_mark : other_mark;
}

bool XMLNodes::read_bytes (std::string_view bytes) {
  bytes_ = bytes.data ();
  return is_plain (bytes) ? tokenise (Source::bytes, bytes) : decode (bytes);
}

bool XMLNodes::decode (std::string_view bytes) {
  points_.clear ();
  classes_.clear ();
  AChar c;
  for (unsigned consumed = 0; decode_utf8_received (bytes.data (), bytes.size (), &c, &consumed);
       bytes.remove_prefix (consumed)) {
    points_.push_back (c);
    add_class (c);
  }
  return tokenise (Source::points, classes_);
}

bool XMLNodes::read_text (const AString &text) {
  whole_ = text;
  classes_.clear ();
  text.walk_runs ([this] (const AChar *run, uint64_t count) {
    std::for_each_n (run, count, [this] (AChar c) { add_class (c); });
    return true;
  });
  return tokenise (Source::text, classes_);
}

void XMLNodes::read_tree (const XMLTree &tree) {
  struct Open {
    XMLChildren::Iterator next;
    uint32_t node;
  };
  std::vector<Open> open;
  nodes_.clear ();
  trees_.clear ();
  source_ = Source::tree;
  const auto add = [&] (const XMLTree &element) {
    Node node;
    node.name = names_ != nullptr ? names_->find_text (element.name ()) : XMLNameTable::unknown;
    open.push_back ({XMLChildren (element).begin (), static_cast<uint32_t> (nodes_.size ())});
    nodes_.push_back (node);
    trees_.push_back (&element);
  };
  add (tree);
  while (!open.empty ()) {
    Open &last = open.back ();
    if (last.next == XMLChildren::Iterator ()) {
      nodes_[last.node].end = static_cast<uint32_t> (nodes_.size ());
      open.pop_back ();
      continue;
    }
    const XMLTree &child = *last.next;
    ++last.next;
    add (child);
  }
}

AString XMLNodes::slice (uint32_t first, uint32_t length) const {
  switch (source_) {
  case Source::bytes:
    return AString::from_latin1 (bytes_ + first, length);
  case Source::points:
    return AString::from_utf32 (points_.data () + first, length);
  case Source::text:
    return whole_.mid (first, length);
  case Source::tree:
    break;
  }
  return {};
}

AString XMLNodes::name (uint32_t node) const {
  const Node &n = nodes_[node];
  if (source_ == Source::tree)
    return trees_[node]->name ();
  return n.name != XMLNameTable::unknown ? names_->name (n.name) : slice (n.name_first, n.name_length);
}

AString XMLNodes::text (uint32_t node) const {
  const Node &n = nodes_[node];
  if (source_ == Source::tree)
    return trees_[node]->text ();
  if (source_ == Source::bytes && std::memchr (bytes_ + n.text_first, '&', n.text_length) == nullptr)
    return slice (n.text_first, n.text_length);
  return decode_entities (slice (n.text_first, n.text_length));
}

XMLTree XMLNodes::tree () const {
  struct Open {
    uint32_t node;
    XMLTree::List children{};
  };
  if (nodes_.empty () || source_ == Source::tree)
    return nodes_.empty () ? XMLTree () : *trees_[0];
  std::vector<Open> open;
  for (uint32_t i = 0;; ++i) {
    if (has_children (i)) {
      open.push_back ({i});
      continue;
    }
    XMLTree done (name (i), text (i));
    for (; !open.empty (); open.pop_back ()) {
      Open &last = open.back ();
      last.children.push_back (std::move (done));
      if (nodes_[last.node].end != i + 1)
        break;
      done = XMLTree (name (last.node), std::move (last.children));
    }
    if (open.empty ())
      return done;
  }
}

bool XMLElement::ascii (std::string_view *text) const {
  const XMLNodes::Node &node = nodes_->nodes_[node_];
  *text = {nodes_->bytes_ + node.text_first, node.text_length};
  return nodes_->source_ == XMLNodes::Source::bytes;
}
