#include "base/astringlist.h"

#include <algorithm>

namespace {

const AString &empty_text () {
  static const AString &empty = *new AString;
  return empty;
}

// The finder of a fixed separator, which is bound as a pointer.
void find_separator (void *bound, const AString &text, int64_t start, int64_t *position, int64_t *length) {
  const AString &separator = *static_cast<const AString *> (bound);
  *position = separator.is_empty () ? -1 : text.find (separator, start);
  *length = static_cast<int64_t> (separator.length ());
}

} // namespace

const AString &AStringList::at (uint32_t index) const {
  return KELVANE_ASSERT (index < size ()) ? list_.read ().at (index) : empty_text ();
}

AString AStringList::take_first () {
  if (is_empty ())
    return {};
  return std::move (list_.write ().take_front ()->value);
}

bool operator== (const AStringList &a, const AStringList &b) {
  return a.shares_list_with (b) || (a.size () == b.size () && std::equal (a.begin (), a.end (), b.begin ()));
}

AString::AString (const AStringList &list) : AString (list, empty_text ()) {}

AString::AString (const AStringList &list, const AString &separator) {
  if (list.size () == 1) {
    *this = list.at (0);
    return;
  }
  AStringBuilder builder;
  bool follows = false;
  for (const AString &text : list) {
    if (follows)
      builder.append (separator);
    builder.append (text);
    follows = true;
  }
  *this = builder.finish ();
}

AStringList AString::split (const AString &separator, bool keep_empty) const {
  AString bound = separator;
  return split (ADelimiterFinder::with_pointer (find_separator, &bound), false, keep_empty);
}

AStringList AString::split (const ADelimiterFinder &finder, bool keep_delimiters, bool keep_empty) const {
  AStringList pieces;
  if (is_empty ())
    return pieces;
  const auto add = [&] (int64_t from, int64_t count, bool wanted) {
    if (wanted)
      pieces.append (mid (static_cast<uint64_t> (from), static_cast<uint64_t> (count)));
  };
  const auto end = static_cast<int64_t> (len_);
  int64_t start = 0;
  while (start <= end && !finder.is_empty ()) {
    int64_t position = -1;
    int64_t length = 1;
    finder.run (*this, start, &position, &length);
    // A finder that goes back would make this loop endless.
    if (position < 0 || !KELVANE_ASSERT (position >= start) || !KELVANE_ASSERT (length >= 0))
      break;
    add (start, position - start, position > start || keep_empty);
    add (position, length, length != 0 && keep_delimiters);
    start = std::min (position, end) + std::clamp<int64_t> (length, 1, end + 1);
  }
  add (start, end, start < end || keep_empty);
  return pieces;
}
