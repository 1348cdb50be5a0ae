#include "xml/xml_tree.h"

#include "xml/xml_children.h"

#include <vector>

namespace {
AString compact (const AString &text) {
  AString result;
  text.detached (&result, XMLTree::store_slack);
  return result;
}
} // namespace

XMLTree::XMLTree () noexcept = default;
XMLTree::XMLTree (const AString &name) : null_ (false), name_ (compact (name)) {}
XMLTree::XMLTree (const AString &name, const AString &text)
    : null_ (false), name_ (compact (name)), text_ (compact (text)) {}
XMLTree::XMLTree (const AString &name, const List &children)
    : null_ (false), name_ (compact (name)), children_ (children) {}
XMLTree::XMLTree (const AString &name, List &&children)
    : null_ (false), name_ (compact (name)), children_ (std::move (children)) {}
XMLTree::XMLTree (const AString &name, const XMLTree &child) : XMLTree (name) {
  children_.write ().push_back (child);
}
XMLTree::XMLTree (const AString &name, XMLTree &&child) : XMLTree (name) {
  children_.write ().push_back (std::move (child));
}
XMLTree::XMLTree (const AString &name, uint64_t number) : XMLTree (name, AString::from_uint64 (number)) {}
XMLTree::XMLTree (const AString &name, uint32_t number) : XMLTree (name, AString::from_uint32 (number)) {}
XMLTree::XMLTree (const AString &name, int64_t number) : XMLTree (name, AString::from_int64 (number)) {}

XMLTree::XMLTree (const XMLTree &other)
    : null_ (other.null_), name_ (other.name_), text_ (other.text_), children_ (other.children_),
      attributes_ (other.attributes_ ? std::make_unique<Attributes> (*other.attributes_) : nullptr) {}
XMLTree::XMLTree (XMLTree &&other) noexcept
    : null_ (std::exchange (other.null_, true)), name_ (std::move (other.name_)),
      text_ (std::move (other.text_)), children_ (std::move (other.children_)),
      attributes_ (std::move (other.attributes_)) {}
XMLTree &XMLTree::operator= (const XMLTree &other) {
  return *this = XMLTree (other);
}
// The old content goes last: `other` may lie among the children that it holds.
XMLTree &XMLTree::operator= (XMLTree &&other) noexcept {
  XMLTree taken (std::move (other));
  std::swap (null_, taken.null_);
  std::swap (name_, taken.name_);
  std::swap (text_, taken.text_);
  std::swap (children_, taken.children_);
  std::swap (attributes_, taken.attributes_);
  return *this;
}
XMLTree::~XMLTree () = default;

const XMLTree::Attributes &XMLTree::attributes () const {
  static const Attributes &none = *new Attributes;
  return attributes_ ? *attributes_ : none;
}

const XMLTree *XMLTree::find (const AString &n) const {
  for (const XMLTree &c : XMLChildren (*this))
    if (c.name_is (n))
      return &c;
  return nullptr;
}

uint32_t XMLTree::count_children (const AString &n, XMLTree *first) const {
  uint32_t count = 0;
  const XMLTree *found = nullptr;
  for (const XMLTree &c : XMLChildren (*this))
    if (c.name_is (n) && count++ == 0)
      found = &c;
  if (first != nullptr && found != nullptr)
    *first = *found;
  return count;
}

XMLTree::List XMLTree::find_children (const AString &n) const {
  List result;
  for (const XMLTree &c : XMLChildren (*this))
    if (c.name_is (n))
      result.push_back (c);
  return result;
}

const XMLTree &XMLTree::child (const AString &n) const {
  static const XMLTree &none = *new XMLTree;
  const XMLTree *found = find (n);
  return found != nullptr ? *found : none;
}

XMLTree *XMLTree::child_ptr (const AString &n) {
  if (!has_child (n))
    return nullptr;
  for (XMLTree &c : children_.write ())
    if (c.name_is (n))
      return &c;
  (void)KELVANE_ASSERT (0);
  return nullptr;
}

void XMLTree::set_text (const AString &text) {
  if (null_)
    return;
  text_ = compact (text);
  children_.clear ();
}

void XMLTree::add_child (XMLTree tree) {
  if (!null_)
    children_.write ().push_back (std::move (tree));
}

void XMLTree::set_child (XMLTree tree) {
  XMLTree *present = child_ptr (tree.name ());
  if (present == nullptr)
    return add_child (std::move (tree));
  present->text_ = std::move (tree.text_);
  std::swap (present->children_, tree.children_);
}

uint32_t XMLTree::remove_children (const AString &n) {
  const uint32_t removed = count_children (n);
  if (removed == 0)
    return 0;
  List kept;
  for (const XMLTree &c : XMLChildren (*this))
    if (!c.name_is (n))
      kept.push_back (c);
  children_ = std::move (kept);
  return removed;
}

bool XMLTree::equal_but_children (const XMLTree &other) const {
  return null_ == other.null_ && children_.size () == other.children_.size () && name_ == other.name_ &&
         text_ == other.text_ && attributes () == other.attributes ();
}

bool XMLTree::equal (const XMLTree &a, const XMLTree &b) {
  struct Pair {
    XMLChildren::Iterator a, b;
  };
  std::vector<Pair> open;
  const auto enter = [&open] (const XMLTree &x, const XMLTree &y) {
    if (!x.equal_but_children (y))
      return false;
    if (&x.children () != &y.children ())
      open.push_back ({XMLChildren (x).begin (), XMLChildren (y).begin ()});
    return true;
  };
  bool same = enter (a, b);
  while (same && !open.empty ()) {
    Pair &last = open.back ();
    if (last.a == XMLChildren::Iterator ()) {
      open.pop_back ();
      continue;
    }
    const XMLTree &x = *last.a, &y = *last.b;
    ++last.a;
    ++last.b;
    same = enter (x, y);
  }
  return same;
}

XMLTree::List make_child_list (XMLTree a, XMLTree b) {
  XMLTree::List list;
  list.push_back (std::move (a));
  list.push_back (std::move (b));
  return list;
}
