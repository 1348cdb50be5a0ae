/// Walking the children of an element without counting references.
#pragma once

#include "xml/xml_tree.h"

/// The children of a tree for a range-based loop. Unlike a cursor of the list, its iterators keep nothing
/// alive, so the tree must not be changed, assigned or destroyed meanwhile. Moving them costs as much as
/// moving a pointer.
class XMLChildren {
public:
  class Iterator {
  public:
    Iterator () noexcept = default;
    explicit Iterator (const XMLTree::List::EntryStruct *entry) noexcept : entry_ (entry) {}
    const XMLTree &operator* () const noexcept { return entry_->value; }
    const XMLTree *operator->() const noexcept { return &entry_->value; }
    Iterator &operator++ () noexcept {
      entry_ = entry_->next.get ();
      return *this;
    }
    bool operator== (const Iterator &) const noexcept = default;

  private:
    const XMLTree::List::EntryStruct *entry_ = nullptr;
  };

  explicit XMLChildren (const XMLTree &tree) : first_ (tree.children ().begin ().entry ().get ()) {}
  Iterator begin () const noexcept { return first_; }
  Iterator end () const noexcept { return Iterator (); }

private:
  Iterator first_;
};
