#include "base/avariant.h"

#include "base/kelvane_assert.h"

#include <utility>

namespace {

/// Allocates the texts of all variants. It is never destroyed.
class TextAllocator {
public:
  AString *get (const AString &text) {
    AString *rv = new AString (text);
    KELVANE_ASSERT (rv != 0);
    return rv;
  }
  void give_back (AString *x) {
    if (!KELVANE_ASSERT (x != 0))
      return;
    *x = AString (); // the store goes at once
    delete x;
  }
};

TextAllocator &texts () {
  static TextAllocator &allocator = *new TextAllocator;
  return allocator;
}

} // namespace

AVariant::AVariant (const AString &value)
    : word_ (reinterpret_cast<uintptr_t> (texts ().get (value))), type_ (AVariantString) {}

AVariant &AVariant::operator= (const AVariant &other) {
  if (this == &other)
    return *this;
  clear ();
  if (other.type_ == AVariantString) {
    AVariant copy (*other.storage ());
    swap (copy);
  } else {
    word_ = other.word_;
    type_ = other.type_;
  }
  return *this;
}

AVariant &AVariant::operator= (AVariant &&other) noexcept {
  AVariant moved (std::move (other));
  swap (moved);
  return *this;
}

void AVariant::swap (AVariant &other) noexcept {
  std::swap (word_, other.word_);
  std::swap (type_, other.type_);
}

void AVariant::clear () noexcept {
  if (type_ == AVariantString)
    texts ().give_back (storage ());
  type_ = AVariantEmpty;
  word_ = 0;
}

bool AVariant::is_integer () const {
  switch (type_) {
  case AVariantUint32:
  case AVariantUint64:
  case AVariantInt32:
  case AVariantInt64:
    return true;
  case AVariantEmpty:
  case AVariantBool:
  case AVariantChar:
  case AVariantString:
    return false;
  default:
    KELVANE_ASSERT (0);
    return false;
  }
}

template <class Number>
Number AVariant::get_number (Number otherwise, bool (AString::*parse) (Number *) const) const {
  Number parsed = otherwise;
  switch (type_) {
  case AVariantEmpty:
    return otherwise;
  case AVariantString:
    (storage ()->*parse) (&parsed);
    return parsed;
  default:
    return KELVANE_ASSERT (type_ < AVariantString) ? static_cast<Number> (word_) : otherwise;
  }
}

uint32_t AVariant::get_uint32 (uint32_t otherwise) const {
  return get_number (otherwise, &AString::to_uint32);
}
uint64_t AVariant::get_uint64 (uint64_t otherwise) const {
  return get_number (otherwise, &AString::to_uint64);
}
int32_t AVariant::get_int32 (int32_t otherwise) const {
  return get_number (otherwise, &AString::to_int32);
}
int64_t AVariant::get_int64 (int64_t otherwise) const {
  return get_number (otherwise, &AString::to_int64);
}

bool AVariant::get_bool (bool otherwise) const {
  if (type_ == AVariantEmpty)
    return otherwise;
  if (type_ == AVariantString)
    return !storage ()->is_empty () && !storage ()->equals ("0") && !storage ()->equals ("false");
  return KELVANE_ASSERT (type_ < AVariantString) ? word_ != 0 : otherwise;
}

AChar AVariant::get_achar (AChar otherwise) const {
  if (type_ == AVariantEmpty)
    return otherwise;
  if (type_ == AVariantString)
    return storage ()->first_char (otherwise);
  return KELVANE_ASSERT (type_ < AVariantString) ? AChar (static_cast<uint32_t> (word_)) : otherwise;
}

AString AVariant::get_string (const AString &otherwise) const {
  switch (type_) {
  case AVariantEmpty:
    return otherwise;
  case AVariantUint32:
  case AVariantUint64:
    return AString::from_uint64 (word_);
  case AVariantInt32:
  case AVariantInt64:
    return AString::from_int64 (static_cast<int64_t> (word_));
  case AVariantBool:
    return AString (word_ != 0 ? "true" : "false");
  case AVariantChar:
    return AString (AChar (static_cast<uint32_t> (word_)));
  case AVariantString:
    return KELVANE_ASSERT (storage () != 0) ? *storage () : otherwise;
  default:
    KELVANE_ASSERT (0);
    return otherwise;
  }
}

AVariant AVariant::convert_to (uint32_t type) const {
  switch (type) {
  case AVariantEmpty:
    return AVariant ();
  case AVariantUint32:
    return AVariant (get_uint32 (0));
  case AVariantUint64:
    return AVariant (get_uint64 (0));
  case AVariantInt32:
    return AVariant (get_int32 (0));
  case AVariantInt64:
    return AVariant (get_int64 (0));
  case AVariantBool:
    return AVariant (get_bool (false));
  case AVariantChar:
    return AVariant (get_achar (AChar ()));
  case AVariantString:
    return AVariant (get_string (AString ()));
  default:
    KELVANE_ASSERT (0);
    return AVariant ();
  }
}

bool AVariant::equal_of_one_type (const AVariant &a, const AVariant &b) {
  if (a.type_ == AVariantEmpty)
    return true;
  if (a.type_ == AVariantString)
    return *a.storage () == *b.storage ();
  return KELVANE_ASSERT (a.type_ < AVariantString) && a.get_uint64 (0) == b.get_uint64 (0);
}

bool operator== (const AVariant &a, const AVariant &b) {
  if (a.type_ == b.type_)
    return AVariant::equal_of_one_type (a, b);
  return AVariant::equal_of_one_type (a, b.convert_to (a.type_)) ||
         AVariant::equal_of_one_type (a.convert_to (b.type_), b);
}
