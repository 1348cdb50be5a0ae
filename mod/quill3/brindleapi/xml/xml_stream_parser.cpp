#include "xml/xml_stream_parser.h"

#include "base/kelvane_assert.h"

#include <algorithm>
#include <cstring>

namespace {
constexpr uint64_t default_bufsize = 1024;

// Backspace is white space between the parts of a tag. Vertical tab and form feed are not.
// C80: doc/compatibility.md
bool is_framing_space (char c) {
  return c == '\b' || c == '\t' || c == '\n' || c == '\r' || c == ' ';
}

uint64_t skip_space (std::string_view b, uint64_t i) {
  while (i < b.size () && is_framing_space (b[i]))
    ++i;
  return i;
}

/// No: whatever follows, this is not the tag. Cut: more bytes can still make it one.
enum class Match { Yes, No, Cut };

Match match_name (std::string_view b, uint64_t *i, std::string_view name) {
  const std::string_view there = b.substr (*i, name.size ());
  if ((!there.empty () && there[0] != name[0]) || !name.starts_with (there)) // the first is fast
    return Match::No;
  *i += there.size ();
  return there.size () == name.size () ? Match::Yes : Match::Cut;
}

// Matches `<name>` or `</name>` at the start of the bytes, with white space between its parts.
// C82: doc/compatibility.md
Match match_tag (std::string_view name, std::string_view b, bool closing) {
  uint64_t i = skip_space (b, 1);
  if (closing) {
    if (i == b.size ())
      return Match::Cut;
    if (b[i] != '/')
      return Match::No;
    i = skip_space (b, i + 1);
  }
  if (const Match m = match_name (b, &i, name); m != Match::Yes)
    return m;
  i = skip_space (b, i);
  if (i == b.size ())
    return Match::Cut;
  return b[i] == '>' ? Match::Yes : Match::No;
}

// The place of the first `<` from `from` on at which `matches` says yes or cut, or the end.
template <class Matches>
uint64_t find_tag (std::string_view b, uint64_t from, Match *result, Matches matches) {
  *result = Match::No;
  for (uint64_t i = b.find ('<', from); i != b.npos; i = b.find ('<', i + 1)) {
    *result = matches (b.substr (i));
    if (*result != Match::No)
      return i;
  }
  return b.size ();
}

// The place of the tag in which the slash at `slash` closes, or npos where nothing but a slash is.
size_t begin_of_closing_tag (std::string_view b, uint64_t slash) {
  while (slash != 0 && is_framing_space (b[slash - 1]))
    --slash;
  return slash != 0 && b[slash - 1] == '<' ? slash - 1 : b.npos;
}

// The place of the first closing tag that begins at `from` or behind it, whole or cut at the end, or the end.
// Looks for slashes, because there are fewer of them than of tags.
uint64_t find_closing_tag (std::string_view b, uint64_t from, Match *result, std::string_view name) {
  for (uint64_t i = b.find ('/', from); i != b.npos; i = b.find ('/', i + 1)) {
    const size_t place = begin_of_closing_tag (b, i);
    if (place == b.npos)
      continue;
    *result = match_tag (name, b.substr (place), true);
    if (*result != Match::No)
      return place;
  }
  const std::string_view rest = b.substr (from);
  const size_t last = rest.rfind ('<'); // only the last tag can be cut
  const bool is_cut = last != rest.npos && match_tag (name, rest.substr (last), true) == Match::Cut;
  *result = is_cut ? Match::Cut : Match::No;
  return is_cut ? from + last : b.size ();
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
  std::memcpy (place_for (taken).data (), bytes, taken);
  add (taken);
  return taken;
}

std::span<char> XMLStreamParser::place_for (uint64_t wanted) {
  const uint64_t needed = used_ + std::min (wanted, free_space ());
  if (first_ + needed > buffer_.size () && first_ != 0) {
    std::memmove (buffer_.data (), bytes ().data (), used_);
    first_ = 0;
  }
  if (needed > buffer_.size ())
    buffer_.resize (std::min (bufsize_, std::max (needed, buffer_.size () * 2)));
  return std::span (buffer_)
      .subspan (first_ + used_)
      .first (std::min (free_space (), buffer_.size () - first_ - used_));
}

void XMLStreamParser::reset () {
  first_ = used_ = searched_ = 0;
  open_name_ = nullptr;
  failed_ = false;
}

// The lowest place wins. Where two registered names match at one place they are the same name.
bool XMLStreamParser::find_opening () {
  Match result;
  searched_ = find_tag (bytes (), searched_, &result, [this] (std::string_view b) {
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
  const std::string_view element = bytes ().substr (open_pos_);
  Match result;
  const uint64_t x = find_closing_tag (element, searched_ - open_pos_, &result, *open_name_);
  searched_ = open_pos_ + x;
  if (result != Match::Yes)
    return false;
  const size_t gt = element.find ('>', x);
  if (!KELVANE_ASSERT (gt != element.npos))
    return false;
  const uint64_t length = gt + 1;
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
  if (!nodes_.read_bytes (bytes ().substr (frame.start, frame.length))) {
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
