/// The element tree: what every protocol message and every tag in it is in memory.
#pragma once

#include "base/astring.h"
#include "base/astringlist.h"
#include "base/ns_list.h"

#include <map>
#include <memory>

/// The layout of written text. Line breaks are always CR LF.
enum XMLFormat : uint32_t {
  XMLCompact = 0, ///< no line breaks, no indentation
  XMLLines = 1,   ///< a line break before each child and before the closing tag of an element with children
  XMLIndented = 2 ///< as XMLLines, each element indented by four blanks per level
};

/// One element: a name and either text or child elements. The null tree, which has nothing in it, stands for
/// "nothing": the result of a failed lookup or parse.
///
/// A plain value. Copies share their children until one side changes them, so a copy costs a few counts.
/// Trees of any depth are copied, compared, written and destroyed without recursion.
///
/// Nothing here fails: a lookup that finds nothing returns the null tree, a null pointer, zero or false.
/// Changes to the null tree have no effect. The parser refuses text beside children, and the setters clear
/// one when they set the other. If an element holds both all the same, its text is not written.
///
/// Threads: a tree is used by one thread at a time; its copies may be used by others.
/// Cost: lookups compare the names of the children in order. Two names that share a store compare in constant
/// time, so look up by the same AString that the tree was built or parsed with.
class XMLTree {
public:
  using List = nonstd_list<XMLTree>;
  using Attributes = std::map<AString, AString>;
  /// Lists of trees lie inside trees: asks nonstd_list to destroy them without recursion.
  static constexpr bool holds_lists = true;
  /// A name or text in a tree shares the store of the given text if the store holds at most this many other
  /// code points. Otherwise it is copied, so that a small tag does not keep a whole message in memory.
  static constexpr uint64_t store_slack = 32;

  /// The null tree.
  XMLTree () noexcept;
  /// An element with neither text nor children.
  explicit XMLTree (const AString &name);
  XMLTree (const AString &name, const AString &text);
  /// An element with the children of a list, in its order.
  XMLTree (const AString &name, const List &children);
  XMLTree (const AString &name, List &&children);
  /// An element with one child.
  XMLTree (const AString &name, const XMLTree &child);
  XMLTree (const AString &name, XMLTree &&child);
  /// The decimal number as text.
  XMLTree (const AString &name, uint64_t number);
  XMLTree (const AString &name, uint32_t number);
  XMLTree (const AString &name, int64_t number);

  XMLTree (const XMLTree &other);
  /// Leaves @p other the null tree.
  XMLTree (XMLTree &&other) noexcept;
  XMLTree &operator= (const XMLTree &other);
  XMLTree &operator= (XMLTree &&other) noexcept;
  ~XMLTree ();

  // -- Reading. References are valid until the tree is changed, assigned or destroyed.

  bool is_null () const noexcept { return null_; }
  /// Empty for the null tree, as is `text`.
  const AString &name () const &noexcept { return name_; }
  AString name () &&noexcept { return std::move (name_); }
  /// Without entities.
  const AString &text () const &noexcept { return text_; }
  AString text () &&noexcept { return std::move (text_); }
  /// Exact, with case.
  bool name_is (const AString &n) const { return name_ == n; }
  /// The child elements in document order.
  const List &children () const { return children_.read (); }
  bool has_children () const noexcept { return !children_.is_empty (); }
  /// Attributes are copied, compared and written. The parser refuses them, and nothing here sets any.
  const Attributes &attributes () const;

  /// True when some child is named @p n.
  bool has_child (const AString &n) const { return find (n) != nullptr; }
  /// The number of children named @p n. @param first receives a copy of the first of them; may be null
  uint32_t count_children (const AString &n, XMLTree *first = nullptr) const;
  /// Copies of all children named @p n, in order.
  List find_children (const AString &n) const;
  /// The first child named @p n; the constant null tree when there is none.
  const XMLTree &child (const AString &n) const;
  /// The first child named @p n, to be changed in place; null when there is none. Valid until this tree is
  /// changed, copied, assigned or destroyed: after a copy the child is shared.
  XMLTree *child_ptr (const AString &n);

  /// Equal names, texts, children in order, and attributes; the null tree equals only the null tree.
  friend bool operator== (const XMLTree &a, const XMLTree &b) { return equal (a, b); }

  // -- Changing

  /// Removes all children.
  void set_text (const AString &text);
  /// Appends, whatever names are there already.
  void add_child (XMLTree tree);
  /// Gives the first child of the same name the children and the text of @p tree, keeping its attributes;
  /// without such a child, appends.
  void set_child (XMLTree tree);
  void set_child (const AString &n, const AString &text) { set_child (XMLTree (n, text)); }
  void set_child (const AString &n, const List &children) { set_child (XMLTree (n, children)); }
  /// Removes every child named @p n. @return their number; with 0 nothing is copied
  uint32_t remove_children (const AString &n);

  // -- Writing: no declaration in front, no line break behind. An element with children is written without
  // its text. Writing the null tree, or in an unknown format, is an assertion failure and writes nothing. A
  // null tree among the children is an assertion failure too, and is left out.
  // @param contract whether an element with neither children nor text is written `<Name />`; its text must be
  //   empty, not just blank

  /// The pieces of the text in order. They share the texts of the tree where possible.
  AStringList render (XMLFormat format, bool contract) const;
  /// The same as one text.
  AString render_text (XMLFormat format, bool contract) const;
  /// Hands the text to @p sink as UTF-8, in portions of at most 1024 bytes that cut no code point. A name or
  /// text ends where a code point cannot be encoded. Builds no list.
  void write_to (const AByteSink &sink, XMLFormat format, bool contract) const;

private:
  friend struct XMLTreeAttributes; // gives elements attributes; tests define it

  const XMLTree *find (const AString &n) const;
  static bool equal (const XMLTree &a, const XMLTree &b);
  bool equal_but_children (const XMLTree &other) const;

  bool null_ = true;
  AString name_;
  AString text_;
  cow_list<XMLTree> children_;
  std::unique_ptr<Attributes> attributes_; ///< null when there are none
};

/// A list of two trees in this order.
XMLTree::List make_child_list (XMLTree a, XMLTree b);
