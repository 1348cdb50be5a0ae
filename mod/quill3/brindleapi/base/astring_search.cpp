#include "base/astring.h"

#include "base/atomic_impl.h"

#include <algorithm>
#include <vector>

namespace {

constexpr uint64_t fnv_offset_basis = 14695981039346656037u;
constexpr uint64_t fnv_prime = 1099511628211u;
constexpr uint64_t needle_on_stack = 32;

uint64_t fnv1a (uint32_t value) {
  uint64_t hash = fnv_offset_basis;
  for (unsigned shift = 0; shift != 32; shift += 8)
    hash = (hash ^ ((value >> shift) & 255u)) * fnv_prime;
  return hash;
}

int compare_runs (const AChar *a, const AChar *b, uint64_t count, ACompareMode mode) {
  for (uint64_t i = 0; i != count; ++i) {
    if (a[i] == b[i])
      continue;
    const AChar x = mode == ACompareCaseless ? a[i].to_lower () : a[i];
    const AChar y = mode == ACompareCaseless ? b[i].to_lower () : b[i];
    if (x != y)
      return x < y ? -1 : 1;
  }
  return 0;
}

// A needle in one piece. `borders[i]` is the length of the longest proper prefix that also ends the first i +
// 1 code points: how much of a partial match survives a code point that does not fit.
struct Needle {
  AChar *text;
  uint64_t *borders;
  uint64_t length;

  uint64_t step (uint64_t matched, AChar c) const {
    while (matched != 0 && text[matched] != c)
      matched = borders[matched - 1];
    return text[matched] == c ? matched + 1 : 0;
  }

  void prepare (const AString &from) {
    AChar *to = text;
    for (AStringRuns runs (from); !runs.at_end (); runs.advance (runs.count ()))
      to = std::copy_n (runs.data (), runs.count (), to);
    borders[0] = 0;
    for (uint64_t i = 1; i != length; ++i)
      borders[i] = step (borders[i - 1], text[i]);
  }
};

// Looks at each code point of the text once.
int64_t search (const AString &text, const Needle &needle, uint64_t from) {
  uint64_t matched = 0;
  const int64_t last = text.find_if (
      [&] (AChar c) {
        matched = needle.step (matched, c);
        return matched == needle.length;
      },
      from);
  return last < 0 ? -1 : last + 1 - static_cast<int64_t> (needle.length);
}

uint64_t clipped (int64_t from) {
  return from < 0 ? 0 : static_cast<uint64_t> (from);
}

} // namespace

int64_t AString::find (AChar wanted, int64_t from) const {
  return find_if ([wanted] (AChar c) { return c == wanted; }, clipped (from));
}

int64_t AString::find (const AString &needle, int64_t from) const {
  const uint64_t n = needle.length ();
  if (n == 0)
    return 0;
  if (n == 1)
    return find (needle.getchar (0), from);
  if (n <= needle_on_stack) {
    AChar text[needle_on_stack];
    uint64_t borders[needle_on_stack];
    Needle prepared{text, borders, n};
    prepared.prepare (needle);
    return search (*this, prepared, clipped (from));
  }
  std::vector<AChar> text (n);
  std::vector<uint64_t> borders (n);
  Needle prepared{text.data (), borders.data (), n};
  prepared.prepare (needle);
  return search (*this, prepared, clipped (from));
}

int64_t AString::rfind (AChar wanted) const {
  return rfind (wanted, INT64_MAX);
}

int64_t AString::rfind (AChar wanted, int64_t from) const {
  if (from < 0 || is_empty ())
    return -1;
  const uint64_t start = std::min (static_cast<uint64_t> (from), len_ - 1);
  return rfind_if ([wanted] (AChar c) { return c == wanted; }, start);
}

int AString::compare (const AString &a, uint64_t a_offset, const AString &b, uint64_t b_offset,
                      uint64_t max_count, ACompareMode mode) {
  if (a.storage_ == b.storage_ && a.start_offset_ == b.start_offset_ && a.len_ == b.len_)
    return 0;
  AStringRuns x (a, a_offset);
  AStringRuns y (b, b_offset);
  while (max_count != 0 && !x.at_end () && !y.at_end ()) {
    const uint64_t count = std::min ({x.count (), y.count (), max_count});
    if (const int order = compare_runs (x.data (), y.data (), count, mode))
      return order;
    x.advance (count);
    y.advance (count);
    max_count -= count;
  }
  return max_count == 0 ? 0 : y.at_end () - x.at_end ();
}

bool AString::equals_caseless (const AString &other) const {
  return len_ == other.len_ && compare (*this, 0, other, 0, to_end, ACompareCaseless) == 0;
}

bool AString::equals (const char *s) const {
  return KELVANE_ASSERT (s != nullptr) && equals (std::string_view (s));
}

bool AString::equals (std::string_view latin1) const {
  if (latin1.size () != len_)
    return false;
  const char *expected = latin1.data ();
  return find_if ([&] (AChar c) { return c != AChar (*expected++); }) < 0;
}

bool AString::starts_with (const AString &prefix, ACompareMode mode) const {
  return compare (*this, 0, prefix, 0, prefix.len_, mode) == 0;
}

bool AString::ends_with (const AString &suffix, ACompareMode mode) const {
  return compare (right (suffix.len_), 0, suffix, 0, to_end, mode) == 0;
}

uint64_t AString::hash () const {
  const uint64_t known = atomic_load_64 (&hash_);
  if (known != 0)
    return known;
  uint64_t sum = 0;
  walk_runs ([&] (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count; ++i)
      sum += fnv1a (run[i].value ());
    return true;
  });
  if (sum == 0)
    sum = 1;
  atomic_compare_and_set_64 (&hash_, 0, sum);
  return sum;
}
