#include "xml/xml_parse.h"

#include "xml/xml_entities.h"
#include "xml/xml_flat_text.h"

#include <algorithm>
#include <vector>

namespace {
/// Code points that lie together in the text in hand.
struct Piece {
  AChar *first = nullptr;
  AChar *last = nullptr;

  size_t length () const { return static_cast<size_t> (last - first); }
  bool is_empty () const { return first == last; }
  bool is_blank () const {
    return std::all_of (first, last, [] (AChar c) { return c.is_space (); });
  }
  Piece trim_left () const {
    Piece p = *this;
    while (!p.is_empty () && p.first->is_space ())
      ++p.first;
    return p;
  }
  Piece trim_right () const {
    Piece p = *this;
    while (!p.is_empty () && p.last[-1].is_space ())
      --p.last;
    return p;
  }
  Piece trim () const { return trim_left ().trim_right (); }
  bool operator== (const Piece &other) const { return std::equal (first, last, other.first, other.last); }
};

enum XMLTagKind : uint32_t { TokenNone = 0, TokenBad = 1, TokenOpen = 2, TokenClose = 3, TokenEmpty = 4 };

struct XMLTagToken {
  XMLTagKind kind = TokenBad;
  Piece name{};           ///< set for the last three kinds
  AChar *start = nullptr; ///< the `<`
  AChar *end = nullptr;   ///< the `>`
};

bool is_letter (AChar c) {
  return c.is_alnum () && !c.is_digit ();
}

// Refuses attributes, comments and declarations. C84: doc/compatibility.md
bool is_name (Piece p) {
  return !p.is_empty () && is_letter (*p.first) &&
         std::all_of (p.first, p.last, [] (AChar c) { return c.is_alnum () || c == AChar ('_'); });
}

XMLTagToken classify (AChar *start, AChar *end) {
  Piece inner = Piece{start + 1, end}.trim ();
  if (inner.is_empty ())
    return {};
  const bool starts_slash = *inner.first == AChar ('/'), ends_slash = inner.last[-1] == AChar ('/');
  if (starts_slash && ends_slash)
    return {};
  if (starts_slash)
    inner = Piece{inner.first + 1, inner.last}.trim_left ();
  if (ends_slash)
    inner = Piece{inner.first, inner.last - 1}.trim_right ();
  if (!is_name (inner))
    return {};
  return {starts_slash ? TokenClose : ends_slash ? TokenEmpty : TokenOpen, inner, start, end};
}

XMLTagToken next_tag (Piece text) {
  const auto is_bracket = [] (AChar c) { return c == AChar ('<') || c == AChar ('>'); };
  AChar *lt = std::find_if (text.first, text.last, is_bracket);
  if (lt == text.last)
    return {TokenNone};
  AChar *gt = std::find (lt, text.last, AChar ('>'));
  if (gt == lt || gt == text.last)
    return {};
  return classify (lt, gt);
}

/// An open element.
struct XMLParseStackContext {
  Piece name;
  Piece text{};       ///< what stands in front of the first child; all there is without children
  bool mixed = false; ///< some text behind the first child is not blank
  XMLTree::List children{};
};

/// One text on its way to a tree.
class XMLParseState {
public:
  /// @param whole the text in hand, for pieces that share its store; null when there is none
  XMLParseState (const XMLNameTable *names, const AString *whole) : names_ (names), whole_ (whole) {}

  XMLTree parse (Piece text) {
    base_ = text.first;
    Piece rest = text.trim ();
    while (!failed_ && !finished_)
      take_tag (&rest);
    return failed_ ? XMLTree () : std::move (root_);
  }

private:
  void take_tag (Piece *rest) {
    const XMLTagToken tag = next_tag (*rest);
    if (tag.kind == TokenBad) {
      failed_ = true;
      return;
    }
    if (tag.kind == TokenNone) {
      on_text (*rest);
      return on_end ();
    }
    if (tag.start != rest->first)
      on_text ({rest->first, tag.start});
    rest->first = tag.end + 1;
    if (tag.kind != TokenClose)
      on_open (tag.name);
    if (tag.kind != TokenOpen)
      on_close (tag.name);
  }

  // C86: doc/compatibility.md
  void on_text (Piece text) {
    if (failed_)
      return;
    if (stack_.empty ())
      failed_ = !text.is_blank ();
    else if (stack_.back ().children.is_empty ())
      stack_.back ().text = text;
    else
      stack_.back ().mixed |= !text.is_blank ();
  }

  void on_open (Piece name) {
    if (!root_.is_null ())
      failed_ = true;
    if (!failed_)
      stack_.push_back ({name});
  }

  void on_close (Piece name) {
    if (!root_.is_null () || stack_.empty ())
      failed_ = true;
    if (failed_)
      return;
    XMLParseStackContext context = std::move (stack_.back ());
    stack_.pop_back ();
    XMLTree tree = name == context.name ? make_tree (context) : XMLTree ();
    failed_ = tree.is_null ();
    if (stack_.empty ())
      root_ = std::move (tree);
    else
      stack_.back ().children.push_back (std::move (tree));
  }

  void on_end () {
    failed_ = failed_ || root_.is_null ();
    finished_ = true;
  }

  // Text beside children is refused, unless it is blank: then it is dropped.
  XMLTree make_tree (XMLParseStackContext &context) const {
    if (context.children.is_empty ())
      return XMLTree (name_string (context.name), text_string (context.text));
    if (context.mixed || !context.text.is_blank ())
      return XMLTree ();
    return XMLTree (name_string (context.name), std::move (context.children));
  }

  AString name_string (Piece name) const {
    const AString *known = names_ != nullptr ? names_->find (name.first, name.length ()) : nullptr;
    return known != nullptr ? *known : string (name);
  }

  AString text_string (Piece text) const {
    if (std::find (text.first, text.last, AChar ('&')) == text.last)
      return string (text);
    return AString::from_utf32 (text.first, decode_entities_in_place (text.first, text.length ()));
  }

  AString string (Piece text) const {
    if (text.is_empty ())
      return AString ();
    if (whole_ != nullptr && whole_->store_length () - text.length () <= XMLTree::store_slack)
      return whole_->mid (static_cast<uint64_t> (text.first - base_), text.length ());
    return AString::from_utf32 (text.first, text.length ());
  }

  const XMLNameTable *names_;
  const AString *whole_;
  const AChar *base_ = nullptr;
  bool failed_ = false;
  bool finished_ = false;
  XMLTree root_;
  std::vector<XMLParseStackContext> stack_; ///< innermost last
};
} // namespace

XMLTree parse_xml_text (const AString &text, bool *bad_result, const XMLNameTable *names) {
  std::vector<AChar> flat = flat_text (text);
  XMLTree tree = XMLParseState (names, &text).parse ({flat.data (), flat.data () + flat.size ()});
  if (bad_result != nullptr)
    *bad_result = tree.is_null ();
  return tree;
}

XMLTree parse_xml_in_place (AChar *text, size_t length, const XMLNameTable *names) {
  return XMLParseState (names, nullptr).parse ({text, text + length});
}
