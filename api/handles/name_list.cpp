#include "api/handles/name_list.h"

namespace {

constexpr size_t block_units = 32768; ///< a block with as many is followed by another
constexpr size_t length_units = 2;

void put_length (char16_t *to, size_t length) {
  to[0] = static_cast<char16_t> (length);
  to[1] = static_cast<char16_t> (length >> 16);
}

size_t length_at (const char16_t *from) {
  return from[0] | size_t{from[1]} << 16;
}

} // namespace

void NameList::append (const AString &name) {
  if (blocks_.empty ())
    blocks_.emplace_back ();
  else if (blocks_.back ().size () >= block_units)
    blocks_.emplace_back ().reserve (block_units);
  std::u16string &block = blocks_.back ();
  const size_t begin = block.size ();
  try {
    block.append (length_units, 0);
    name.append_utf16_to (&block);
  } catch (...) {
    block.resize (begin);
    throw;
  }
  put_length (&block[begin], block.size () - begin - length_units);
}

std::u16string_view NameList::take_first () {
  if (!blocks_.empty () && read_ == blocks_.front ().size ()) {
    blocks_.pop_front ();
    read_ = 0;
  }
  if (blocks_.empty ())
    return {};
  const std::u16string_view rest = std::u16string_view (blocks_.front ()).substr (read_);
  const std::u16string_view name = rest.substr (length_units, length_at (rest.data ()));
  read_ += length_units + name.size ();
  return name;
}
