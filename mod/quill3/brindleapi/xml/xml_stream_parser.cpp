#include "xml/xml_stream_parser.h"

#include "base/kelvane_assert.h"

#include <algorithm>
#include <cstring>

namespace {
constexpr uint64_t default_bufsize = 1024;

/// Bytes that lie together.
struct Bytes {
  const char *p;
  uint64_t length;
};

// Backspace is white space between the parts of a tag. Vertical tab and form feed are not.
// C80: doc/compatibility.md
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
// C82: doc/compatibility.md
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
} // namespace

XMLStreamParser::XMLStreamParser (uint64_t bufsize) : bufsize_ (bufsize) {
  if (!KELVANE_ASSERT (bufsize != 0))
    bufsize_ = default_bufsize;
}

void XMLStreamParser::add_element_name (std::string_view name) {
  element_names_.emplace_back (name);
  open_name_ = nullptr;
  searched_ = 0;
}

// C83: doc/compatibility.md
uint64_t XMLStreamParser::feed (uint64_t length, const char *bytes) {
  if (failed_)
    return length;
  const uint64_t taken = std::min (length, free_space ());
  if (taken == 0)
    return 0;
  make_room (taken);
  std::memcpy (buffer_.data () + first_ + used_, bytes, taken);
  used_ += taken;
  return taken;
}

void XMLStreamParser::make_room (uint64_t wanted) {
  if (first_ + used_ + wanted <= buffer_.size ())
    return;
  if (used_ != 0)
    std::memmove (buffer_.data (), buffer_.data () + first_, used_);
  first_ = 0;
  if (used_ + wanted > buffer_.size ())
    buffer_.resize (std::min (bufsize_, std::max (used_ + wanted, buffer_.size () * 2)));
}

void XMLStreamParser::reset () {
  first_ = used_ = searched_ = 0;
  open_name_ = nullptr;
  failed_ = false;
}

// The lowest place wins. Where two registered names match at one place they are the same name.
bool XMLStreamParser::find_opening () {
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
// C81, C82: doc/compatibility.md
bool XMLStreamParser::find_frame (Frame *frame) {
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

void XMLStreamParser::consume (uint64_t consumed_length) {
  if (!KELVANE_ASSERT (consumed_length <= used_)) {
    failed_ = true;
    return;
  }
  used_ -= consumed_length;
  first_ = used_ != 0 ? first_ + consumed_length : 0;
  open_name_ = nullptr;
  searched_ = 0;
}

const XMLNodes *XMLStreamParser::next_nodes () {
  Frame frame;
  if (failed_ || !find_frame (&frame))
    return nullptr;
  if (!nodes_.read_bytes ({bytes () + frame.start, frame.length})) {
    failed_ = true;
    return nullptr;
  }
  consume (frame.start + frame.length);
  return &nodes_;
}

XMLTree XMLStreamParser::next_element () {
  const XMLNodes *const nodes = next_nodes ();
  return nodes != nullptr ? nodes->tree () : XMLTree ();
}
