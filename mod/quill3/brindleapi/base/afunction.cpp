#include "base/afunction.h"

#include <tuple>

namespace {

// The language defines no order of function pointers, but one of their addresses.
uintptr_t address (void (*function) ()) {
  return reinterpret_cast<uintptr_t> (function);
}

} // namespace

bool AFunctionBase::operator== (const AFunctionBase &other) const {
  if (kind_ != other.kind_)
    return false;
  switch (kind_) {
  case 0:
    return true;
  case 1:
    return address (function_) == address (other.function_);
  case 2:
  case 3:
    return address (function_) == address (other.function_) && first_ == other.first_;
  case 4:
    return address (function_) == address (other.function_) && first_ == other.first_ &&
           second_ == other.second_;
  default:
    return kelvane_assert_report (__FILE__, __LINE__, "0");
  }
}

bool AFunctionBase::operator<(const AFunctionBase &other) const {
  if (kind_ != other.kind_)
    return kind_ < other.kind_;
  auto one = std::tuple (address (function_), first_);
  auto two = std::tuple (address (other.function_), other.first_);
  switch (kind_) {
  case 0:
    return true;
  case 1:
    return address (function_) < address (other.function_);
  case 2:
  case 3:
    return one < two;
  case 4:
    return one != two ? one < two : second_ < other.second_;
  default:
    kelvane_assert_report (__FILE__, __LINE__, "0");
    return true;
  }
}
