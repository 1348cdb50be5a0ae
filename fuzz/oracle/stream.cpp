#include "oracle/oracle.h"

#include "base/kelvane_assert.h"
#include "xml/xml_entities.h"

#include <algorithm>
#include <cstring>

namespace oracle {

namespace {
constexpr uint64_t default_bufsize = 1024;

/// Bytes that lie together.
struct Bytes {
  const char *p;
  uint64_t length;
};

// Backspace is white space between the parts of a tag, vertical tab and form feed are not.
bool is_framing_space (char c) {
  return c == '\b' || c == '\t' || c == '\n' || c == '\r' || c == ' ';
}

uint64_t skip_space (Bytes b, uint64_t i) {
  while (i < b.length && is_framing_space (b.p[i]))
    ++i;
  return i;
}

/// No: whatever follows, this is not the tag. Cut: more bytes can still make it one.
enum class Match { Yes, No, Cut };

Match match_name (Bytes b, uint64_t *i, const std::string &name) {
  const uint64_t there = std::min<uint64_t> (b.length - *i, name.size ());
  if (std::memcmp (b.p + *i, name.data (), there) != 0)
    return Match::No;
  *i += there;
  return there == name.size () ? Match::Yes : Match::Cut;
}

// Matches `<name>` or `</name>` at the start of the bytes, with white space between its parts.
Match match_tag (const std::string &name, Bytes b, bool closing) {
  uint64_t i = skip_space (b, 1);
  if (closing) {
    if (i == b.length)
      return Match::Cut;
    if (b.p[i] != '/')
      return Match::No;
    i = skip_space (b, i + 1);
  }
  if (const Match m = match_name (b, &i, name); m != Match::Yes)
    return m;
  i = skip_space (b, i);
  if (i == b.length)
    return Match::Cut;
  return b.p[i] == '>' ? Match::Yes : Match::No;
}

const char *find_byte (Bytes b, uint64_t from, char c) {
  return static_cast<const char *> (std::memchr (b.p + from, c, b.length - from));
}

// Goes through the places of `<` from `from` on, until `matches` says yes or cut there. The place, or the
// end.
template <class Matches>
uint64_t find_tag (Bytes b, uint64_t from, Match *result, Matches matches) {
  *result = Match::No;
  for (uint64_t i = from; i < b.length; ++i) {
    const char *lt = find_byte (b, i, '<');
    if (lt == nullptr)
      break;
    i = static_cast<uint64_t> (lt - b.p);
    *result = matches (Bytes{lt, b.length - i});
    if (*result != Match::No)
      return i;
  }
  return b.length;
}

// Decodes up to the first thing that is refused. The number of code points.
size_t decode (Bytes b, AChar *out) {
  size_t count = 0;
  for (uint64_t i = 0; i != b.length; ++count) {
    unsigned consumed = 1;
    const auto byte = static_cast<unsigned char> (b.p[i]);
    if (byte != 0 && byte < 128)
      out[count] = AChar (b.p[i]);
    else if (!decode_utf8_received (b.p + i, b.length - i, &out[count], &consumed))
      break;
    i += consumed;
  }
  return count;
}

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

// Attributes, comments and declarations are refused here.
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
  XMLTree parse (Piece text) {
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
      return XMLTree (string (context.name), text_string (context.text));
    if (context.mixed || !context.text.is_blank ())
      return XMLTree ();
    return XMLTree (string (context.name), std::move (context.children));
  }

  AString text_string (Piece text) const {
    if (std::find (text.first, text.last, AChar ('&')) == text.last)
      return string (text);
    return AString::from_utf32 (text.first, decode_entities_in_place (text.first, text.length ()));
  }

  static AString string (Piece text) {
    return text.is_empty () ? AString () : AString::from_utf32 (text.first, text.length ());
  }

  bool failed_ = false;
  bool finished_ = false;
  XMLTree root_;
  std::vector<XMLParseStackContext> stack_; ///< innermost last
};
} // namespace

StreamParser::StreamParser (uint64_t bufsize) : bufsize_ (bufsize) {
  if (!KELVANE_ASSERT (bufsize != 0))
    bufsize_ = default_bufsize;
  buffer_.resize (bufsize_);
}

void StreamParser::add_element_name (std::string_view name) {
  element_names_.emplace_back (name);
  open_name_ = nullptr;
  searched_ = 0;
}

uint64_t StreamParser::feed (uint64_t length, const char *bytes) {
  if (failed_)
    return length;
  const uint64_t taken = std::min (length, free_space ());
  if (taken == 0)
    return 0;
  if (first_ + used_ + taken > bufsize_) {
    std::memmove (buffer_.data (), buffer_.data () + first_, used_);
    first_ = 0;
  }
  std::memcpy (buffer_.data () + first_ + used_, bytes, taken);
  used_ += taken;
  return taken;
}

void StreamParser::reset () {
  first_ = used_ = searched_ = 0;
  open_name_ = nullptr;
  failed_ = false;
}

// The lowest place wins. Where two registered names match at one place they are the same name.
bool StreamParser::find_opening () {
  Match result;
  searched_ = find_tag ({bytes (), used_}, searched_, &result, [this] (Bytes b) {
    Match best = Match::No;
    for (const std::string &name : element_names_) {
      const Match m = match_tag (name, b, false);
      if (m == Match::Yes) {
        open_name_ = &name;
        return m;
      }
      if (m == Match::Cut)
        best = m;
    }
    return best;
  });
  open_pos_ = searched_;
  return result == Match::Yes;
}

// A cut tag is always the last one in the bytes, so the search for the next opening may wait there.
bool StreamParser::find_frame (Frame *frame) {
  if (open_name_ == nullptr && !find_opening ())
    return false;
  if (!KELVANE_ASSERT (open_pos_ < used_)) {
    failed_ = true;
    return false;
  }
  const uint64_t buflen = used_ - open_pos_;
  const Bytes element{bytes () + open_pos_, buflen};
  Match result;
  const uint64_t x = find_tag (element, searched_ - open_pos_, &result,
                               [this] (Bytes b) { return match_tag (*open_name_, b, true); });
  searched_ = open_pos_ + x;
  if (result != Match::Yes)
    return false;
  if (!KELVANE_ASSERT (x < buflen))
    return false;
  const char *gt = find_byte (element, x, '>');
  const uint64_t length = KELVANE_ASSERT (gt != nullptr) ? static_cast<uint64_t> (gt - element.p) + 1 : x;
  if (!KELVANE_ASSERT (length <= buflen))
    return false;
  *frame = {open_pos_, length};
  return true;
}

XMLTree StreamParser::parse (const Frame &frame) {
  if (decoded_.size () < frame.length)
    decoded_.resize (frame.length);
  const size_t count = decode ({bytes () + frame.start, frame.length}, decoded_.data ());
  return XMLParseState ().parse ({decoded_.data (), decoded_.data () + count});
}

void StreamParser::consume (uint64_t consumed_length) {
  if (!KELVANE_ASSERT (consumed_length <= used_)) {
    failed_ = true;
    return;
  }
  used_ -= consumed_length;
  first_ = used_ != 0 ? first_ + consumed_length : 0;
  open_name_ = nullptr;
  searched_ = 0;
}

XMLTree StreamParser::next_element () {
  Frame frame;
  if (failed_ || !find_frame (&frame))
    return XMLTree ();
  XMLTree tree = parse (frame);
  if (tree.is_null ())
    failed_ = true;
  else
    consume (frame.start + frame.length);
  return tree;
}

} // namespace oracle
