/// Text on its way out as UTF-8.
#pragma once

#include "base/astring.h"
#include "xml/xml_entities.h"

#include <cstring>
#include <string_view>

/// Gathers text and hands it on as UTF-8, in portions of at most 1024 bytes that cut no code point. A text
/// ends where a code point cannot be encoded. Threads: one at a time.
class XMLByteOutput {
public:
  explicit XMLByteOutput (AByteSink sink) : sink_ (sink) {}
  XMLByteOutput (const XMLByteOutput &) = delete;
  XMLByteOutput &operator= (const XMLByteOutput &) = delete;

  /// @param text at most 1024 characters
  void put_ascii (std::string_view text) {
    make_room (text.size ());
    std::memcpy (buffer_ + used_, text.data (), text.size ());
    used_ += text.size ();
  }
  void put (const AString &text) {
    text.walk_runs ([this] (const AChar *run, uint64_t count) { return put_run<false> (run, count); });
  }
  /// With the five entities.
  void put_escaped (const AString &text) {
    text.walk_runs ([this] (const AChar *run, uint64_t count) { return put_run<true> (run, count); });
  }
  /// Hands on what has been gathered.
  void finish () {
    if (used_ != 0)
      sink_.run (buffer_, used_);
    used_ = 0;
  }

private:
  void make_room (size_t wanted) {
    if (sizeof (buffer_) - used_ < wanted)
      finish ();
  }
  template <bool escape>
  bool put_run (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count; ++i)
      if (!put_char<escape> (run[i]))
        return false;
    return true;
  }
  template <bool escape>
  bool put_char (AChar c) {
    make_room (MAX_UTF8_CHAR_LENGTH);
    if (!c.is_ascii ())
      return put_encoded (c);
    const XMLEntity *row = escape ? xml_entity_of (c) : nullptr;
    if (row != nullptr)
      put_ascii (row->entity);
    else
      buffer_[used_++] = static_cast<char> (c.value ());
    return true;
  }
  bool put_encoded (AChar c) {
    unsigned nbytes = 0;
    if (!encode_utf8_received (c, buffer_ + used_, sizeof (buffer_) - used_, &nbytes))
      return false;
    used_ += nbytes;
    return true;
  }

  const AByteSink sink_;
  size_t used_ = 0;
  char buffer_[1024];
};
