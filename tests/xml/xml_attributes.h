#pragma once

#include "xml/xml_tree.h"

/// The one way to give an element attributes.
struct XMLTreeAttributes {
  static void set (XMLTree &tree, const AString &name, const AString &value) {
    if (!tree.attributes_)
      tree.attributes_ = std::make_unique<XMLTree::Attributes> ();
    (*tree.attributes_)[name] = value;
  }
};
