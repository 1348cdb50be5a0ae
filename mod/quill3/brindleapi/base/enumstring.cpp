#include "base/enumstring.h"

namespace {

AString spelling_of (const EnumStringRow &row) {
  return row.spelling;
}
AString spelling_of (const EnumStringTextRow &row) {
  return row.spelling == nullptr ? AString () : AString (row.spelling);
}

template <class Row>
uint32_t first_number (const Row *rows, size_t tblcount) {
  return rows == nullptr || tblcount == 0 ? UINT32_MAX : rows->number;
}

template <class Row>
AString first_spelling (const Row *rows, size_t tblcount) {
  return rows == nullptr || tblcount == 0 ? AString () : spelling_of (*rows);
}

} // namespace

EnumString::EnumString (const EnumStringRow *rows, size_t tblcount)
    : EnumString (rows, tblcount, first_number (rows, tblcount), first_spelling (rows, tblcount)) {}

EnumString::EnumString (const EnumStringTextRow *rows, size_t tblcount)
    : EnumString (rows, tblcount, first_number (rows, tblcount), first_spelling (rows, tblcount)) {}

EnumString::EnumString (const EnumStringRow *rows, size_t tblcount, uint32_t default_number,
                        const AString &default_spelling)
    : default_number_ (default_number), default_spelling_ (default_spelling) {
  build (rows, tblcount);
}

EnumString::EnumString (const EnumStringTextRow *rows, size_t tblcount, uint32_t default_number,
                        const AString &default_spelling)
    : default_number_ (default_number), default_spelling_ (default_spelling) {
  build (rows, tblcount);
}

template <class Row>
void EnumString::build (const Row *tbl, size_t tblcount) {
  if (!KELVANE_ASSERT (tblcount > 0) || !KELVANE_ASSERT (tbl != nullptr))
    return;
  for (size_t i = 0; i != tblcount; ++i)
    add (tbl[i].number, spelling_of (tbl[i]));
}

void EnumString::add (uint32_t number, const AString &spelling) {
  if (spelling.is_empty ())
    return;
  by_number_.try_emplace (number, spelling);
  by_spelling_.try_emplace (spelling, number);
}

bool EnumString::from_string (const AString &spelling, uint32_t *out) const {
  const auto found = by_spelling_.find (spelling);
  if (found == by_spelling_.end ())
    return false;
  if (out != nullptr)
    *out = found->second;
  return true;
}

bool EnumString::to_string (uint32_t number, AString *out) const {
  const auto found = by_number_.find (number);
  if (found == by_number_.end ())
    return false;
  if (out != nullptr)
    *out = found->second;
  return true;
}

uint32_t EnumString::value_of (const AString &spelling, uint32_t otherwise) const {
  from_string (spelling, &otherwise);
  return otherwise;
}

AString EnumString::text_of (uint32_t number, const AString &otherwise) const {
  AString spelling = otherwise;
  to_string (number, &spelling);
  return spelling;
}
