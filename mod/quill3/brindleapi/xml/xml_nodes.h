/// The parser: one element and all that is in it as a flat array.
#pragma once

#include "xml/xml_names.h"
#include "xml/xml_tree.h"

#include <string>
#include <string_view>
#include <vector>

class XMLElement;

/// Turns an element, given as text or as a tree, into an array of nodes in the order of their opening tags.
/// It accepts what `parse_xml_text` accepts. An object is used for many messages, and allocates nothing once
/// it has read messages of the usual size.
///
/// Threads: one at a time.
class XMLNodes {
public:
  /// @param names the names that get a number; may be null; must outlive this object
  explicit XMLNodes (const XMLNameTable *names = nullptr) : names_ (names) {}
  XMLNodes (const XMLNodes &) = delete;
  XMLNodes &operator= (const XMLNodes &) = delete;

  void set_names (const XMLNameTable *names) { names_ = names; }

  // Each drops the previous element. @return false when the text is refused; the array is then empty.

  /// Reads UTF-8. The bytes must stay in place. The text ends at the first byte that decode_utf8_received
  /// refuses.
  bool read_bytes (std::string_view bytes);
  bool read_text (const AString &text);

  /// Reads a tree, which must not be changed meanwhile. The null tree is an element without a name.
  void read_tree (const XMLTree &tree);

  /// The outermost element. It must not be called when the array is empty.
  XMLElement root () const;
  /// The same as a tree, the null tree when the array is empty.
  XMLTree tree () const;

private:
  friend class XMLElement;
  friend class XMLTokeniser;

  struct Node {
    uint32_t name = XMLNameTable::unknown; ///< number in the table
    uint32_t name_first = 0, name_length = 0;
    uint32_t text_first = 0, text_length = 0; ///< empty where there are children
    uint32_t end = 0;                         ///< behind the last descendant
  };
  /// What the places of a node refer to.
  enum class Source {
    bytes,  ///< `bytes_`, each of them an ASCII character
    points, ///< `points_`
    text,   ///< `whole_`
    tree    ///< nothing: `trees_` has the tree of each node
  };

  bool tokenise (Source source, std::string_view text);
  bool decode (std::string_view bytes);
  void add_class (AChar c);
  AString slice (uint32_t first, uint32_t length) const;
  AString name (uint32_t node) const;
  AString text (uint32_t node) const;
  bool has_children (uint32_t node) const { return nodes_[node].end != node + 1; }

  const XMLNameTable *names_;
  Source source_ = Source::bytes;
  std::vector<Node> nodes_;
  const char *bytes_ = nullptr;
  std::vector<AChar> points_;
  AString whole_;
  std::vector<const XMLTree *> trees_;
  std::string classes_; ///< of `points_` or `whole_`: one character for each code point
};

/// An element of an array. Valid until the array is changed.
class XMLElement {
public:
  XMLElement () = default;
  XMLElement (const XMLNodes *nodes, uint32_t node) : nodes_ (nodes), node_ (node) {}

  /// The number of its name in the table of names.
  uint32_t name_number () const { return nodes_->nodes_[node_].name; }
  AString name () const { return nodes_->name (node_); }
  /// Without entities; empty where there are children.
  AString text () const { return nodes_->text (node_); }
  /// The text in place, with its entities as they are. @return false when it does not lie in ASCII bytes; use
  /// `text` then
  bool ascii (std::string_view *text) const;

  /// Its place in the array, and the element at another place of the same array. Callers may keep places
  /// instead of elements.
  uint32_t place () const { return node_; }
  XMLElement at (uint32_t place) const { return {nodes_, place}; }

  class Iterator;
  class Children;
  /// For a range-based loop.
  Children children () const;

private:
  const XMLNodes *nodes_ = nullptr;
  uint32_t node_ = 0;
};

class XMLElement::Iterator {
public:
  Iterator (const XMLNodes *nodes, uint32_t node) : nodes_ (nodes), node_ (node) {}
  XMLElement operator* () const { return {nodes_, node_}; }
  Iterator &operator++ () {
    node_ = nodes_->nodes_[node_].end;
    return *this;
  }
  bool operator== (const Iterator &) const = default;

private:
  const XMLNodes *nodes_;
  uint32_t node_;
};

class XMLElement::Children {
public:
  Children (const XMLNodes *nodes, uint32_t node, uint32_t end) : nodes_ (nodes), node_ (node), end_ (end) {}
  Iterator begin () const { return {nodes_, node_ + 1}; }
  Iterator end () const { return {nodes_, end_}; }

private:
  const XMLNodes *nodes_;
  uint32_t node_, end_;
};

inline XMLElement::Children XMLElement::children () const {
  return {nodes_, node_, nodes_->nodes_[node_].end};
}
inline XMLElement XMLNodes::root () const {
  return {this, 0};
}
