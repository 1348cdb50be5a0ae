#include "writer.h"

#include "vocabulary.h"
#include "wire.h"

namespace sim {

Writer &Writer::open (std::string_view name) {
  ((out_ += '<') += name) += '>';
  return *this;
}

Writer &Writer::close (std::string_view name) {
  ((out_ += "</") += name) += '>';
  return *this;
}

Writer &Writer::text (std::string_view name, std::string_view value) {
  if (value.empty ())
    return raw (empty_body (name));
  open (name);
  out_ += escaped (value);
  return close (name);
}

Writer &Writer::number (std::string_view name, std::uint64_t value) {
  return text (name, std::to_string (value));
}

Writer &Writer::distance (std::string_view name, std::int64_t value) {
  return text (name, std::to_string (value));
}

Writer &Writer::flag (std::string_view name, bool value) {
  return value ? raw (empty_body (name)) : *this;
}

Writer &Writer::word (std::string_view name, int number) {
  return text (name, word_at (name, number));
}

Writer &Writer::raw (std::string_view written) {
  out_ += written;
  return *this;
}

std::string empty_body (std::string_view name) {
  return '<' + std::string (name) + " />";
}

} // namespace sim
