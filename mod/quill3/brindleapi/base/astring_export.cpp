#include "base/astring.h"

#include <algorithm>

namespace {

constexpr uint32_t first_surrogate = 0xD800; // below it a code point is one unit of UTF-16

constexpr size_t utf8_portion = 128;

/// The loop of all exporters with a buffer. `put (c, buffer, room)` writes one code point and returns its
/// units, 0 to stop. Returns the units written.
template <class Unit, class Put>
size_t fill (const AString &text, Unit *buffer, size_t capacity, Put put) {
  size_t used = 0;
  text.walk_runs ([&] (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count && used != capacity; ++i) {
      const size_t units = put (run[i], buffer + used, capacity - used);
      if (units == 0)
        return false;
      used += units;
    }
    return used != capacity;
  });
  return used;
}

template <class Unit>
void end (Unit *buffer, size_t capacity, size_t used, size_t *written, bool pad, Unit padding) {
  if (written != nullptr)
    *written = used;
  if (pad)
    std::fill (buffer + used, buffer + capacity, padding);
}

template <class Unit>
size_t terminated (Unit *buffer, size_t used) {
  buffer[used] = 0;
  return used;
}

size_t fill_latin1 (const AString &text, char *buffer, size_t capacity, char substitute) {
  const auto instead = static_cast<unsigned char> (substitute);
  return fill (text, buffer, capacity, [=] (AChar c, char *to, size_t) {
    *to = static_cast<char> (c.to_latin1 (instead));
    return size_t{1};
  });
}

size_t put_utf8 (AChar c, char *to, size_t room) {
  unsigned nbytes = 0;
  if (!encode_utf8_received (c, to, room, &nbytes))
    return 0;
  return KELVANE_ASSERT (nbytes > 0) && KELVANE_ASSERT (nbytes <= room) ? nbytes : 0;
}

template <class Unit>
size_t put_utf16 (AChar c, Unit *to, size_t room) {
  char16_t units[MAX_UTF16_WCHAR_LENGTH];
  unsigned count = 0;
  if (!encode_utf16 (c, units, room, &count))
    return 0;
  if (!KELVANE_ASSERT (count > 0) || !KELVANE_ASSERT (count <= room))
    return 0;
  std::transform (units, units + count, to, [] (char16_t unit) { return static_cast<Unit> (unit); });
  return count;
}

template <class Unit>
size_t fill_utf16 (const AString &text, Unit *buffer, size_t capacity) {
  return fill (text, buffer, capacity, put_utf16<Unit>);
}

template <class Unit>
size_t fill_code_points (const AString &text, Unit *buffer, size_t capacity) {
  size_t used = 0;
  text.walk_runs ([&] (const AChar *run, uint64_t count) {
    const size_t here = std::min<size_t> (count, capacity - used);
    std::transform (run, run + here, buffer + used, [] (AChar c) { return static_cast<Unit> (c.value ()); });
    used += here;
    return used != capacity;
  });
  return used;
}

size_t fill_wide (const AString &text, wchar_t *buffer, size_t capacity) {
  static_assert (sizeof (wchar_t) == sizeof (uint16_t) || sizeof (wchar_t) == sizeof (uint32_t));
  if constexpr (sizeof (wchar_t) == sizeof (uint16_t))
    return fill_utf16 (text, buffer, capacity);
  else
    return fill_code_points (text, buffer, capacity);
}

template <class Unit>
void copy_utf16_to (const AString &text, Unit *buffer, size_t utf16_bufcount, size_t *written, bool pad) {
  if (KELVANE_ASSERT (buffer != nullptr) && KELVANE_ASSERT (utf16_bufcount > 0))
    end (buffer, utf16_bufcount, fill_utf16 (text, buffer, utf16_bufcount), written, pad, Unit (0));
  else if (written != nullptr)
    *written = 0;
}

template <class Unit>
size_t copy_utf16_z_to (const AString &text, Unit *buffer, size_t utf16_bufcount) {
  if (!KELVANE_ASSERT (buffer != nullptr) || !KELVANE_ASSERT (utf16_bufcount > 0))
    return 0;
  return terminated (buffer, fill_utf16 (text, buffer, utf16_bufcount - 1));
}

// Appends the code points up to the first that may need more than one unit, and returns where that is.
const AChar *add_single_units (const AChar *run, const AChar *stop, std::u16string &out) {
  const AChar *const end = std::find_if (run, stop, [] (AChar c) { return c.value () >= first_surrogate; });
  const size_t used = out.size ();
  out.resize (used + static_cast<size_t> (end - run));
  std::transform (run, end, out.begin () + static_cast<std::ptrdiff_t> (used),
                  [] (AChar c) { return static_cast<char16_t> (c.value ()); });
  return end;
}

// Collects bytes for a sink.
class Portion {
public:
  explicit Portion (const AByteSink &sink) : sink_ (sink) {}

  bool add (const AChar *run, uint64_t count) {
    for (const AChar *const stop = run + count; run != stop;) {
      if (utf8_portion - used_ < MAX_UTF8_CHAR_LENGTH)
        flush ();
      run = add_ascii (run, stop);
      if (run == stop || run->is_ascii ())
        continue;
      if (utf8_portion - used_ < MAX_UTF8_CHAR_LENGTH)
        flush ();
      const size_t nbytes = put_utf8 (*run++, bytes_ + used_, utf8_portion - used_);
      if (nbytes == 0)
        return false;
      used_ += nbytes;
    }
    return true;
  }

  void flush () {
    if (used_ != 0)
      sink_.run (bytes_, used_);
    used_ = 0;
  }

private:
  const AChar *add_ascii (const AChar *run, const AChar *stop) {
    while (run != stop && run->is_ascii () && used_ <= utf8_portion - MAX_UTF8_CHAR_LENGTH)
      bytes_[used_++] = static_cast<char> ((run++)->value ());
    return run;
  }

  const AByteSink &sink_;
  size_t used_ = 0;
  char bytes_[utf8_portion];
};

void append_bytes (void *out, const void *data, uint64_t length) {
  static_cast<std::string *> (out)->append (static_cast<const char *> (data), length);
}

} // namespace

void AString::copy_latin1 (char *buffer, size_t latin1_buflen, char substitute, size_t *written, bool pad,
                           char padding) const {
  if (KELVANE_ASSERT (buffer != nullptr) && KELVANE_ASSERT (latin1_buflen > 0))
    ::end (buffer, latin1_buflen, fill_latin1 (*this, buffer, latin1_buflen, substitute), written, pad,
           padding);
  else if (written != nullptr)
    *written = 0;
}

size_t AString::copy_latin1_z (char *buffer, size_t latin1_buflen, char substitute) const {
  if (!KELVANE_ASSERT (buffer != nullptr) || !KELVANE_ASSERT (latin1_buflen > 0))
    return 0;
  return terminated (buffer, fill_latin1 (*this, buffer, latin1_buflen - 1, substitute));
}

void AString::copy_utf8 (char *buffer, size_t utf8_buflen, size_t *written, bool pad, char padding) const {
  if (written != nullptr)
    *written = 0;
  if (utf8_buflen == 0) {
    static_cast<void> (KELVANE_ASSERT (length () == 0));
    return;
  }
  if (KELVANE_ASSERT (buffer != nullptr))
    ::end (buffer, utf8_buflen, fill (*this, buffer, utf8_buflen, put_utf8), written, pad, padding);
}

size_t AString::copy_utf8_z (char *buffer, size_t utf8_buflen) const {
  if (!KELVANE_ASSERT (buffer != nullptr) || !KELVANE_ASSERT (utf8_buflen > 0))
    return 0;
  return terminated (buffer, fill (*this, buffer, utf8_buflen - 1, put_utf8));
}

void AString::copy_utf16 (uint16_t *buffer, size_t utf16_bufcount, size_t *written, bool pad) const {
  copy_utf16_to (*this, buffer, utf16_bufcount, written, pad);
}

void AString::copy_utf16 (char16_t *buffer, size_t utf16_bufcount, size_t *written, bool pad) const {
  copy_utf16_to (*this, buffer, utf16_bufcount, written, pad);
}

size_t AString::copy_utf16_z (uint16_t *buffer, size_t utf16_bufcount) const {
  return copy_utf16_z_to (*this, buffer, utf16_bufcount);
}

size_t AString::copy_utf16_z (char16_t *buffer, size_t utf16_bufcount) const {
  return copy_utf16_z_to (*this, buffer, utf16_bufcount);
}

void AString::copy_uint32 (uint32_t *buffer, size_t uint32_bufcount, size_t *written, bool pad) const {
  if (uint32_bufcount != 0 && KELVANE_ASSERT (buffer != nullptr))
    ::end (buffer, uint32_bufcount, fill_code_points (*this, buffer, uint32_bufcount), written, pad,
           uint32_t{0});
  else if (written != nullptr)
    *written = 0;
}

size_t AString::copy_uint32_z (uint32_t *buffer, size_t uint32_bufcount) const {
  if (!KELVANE_ASSERT (buffer != nullptr) || !KELVANE_ASSERT (uint32_bufcount > 0))
    return 0;
  return terminated (buffer, fill_code_points (*this, buffer, uint32_bufcount - 1));
}

void AString::copy_wchar (wchar_t *buffer, size_t wchar_bufcount, size_t *written, bool pad) const {
  if (KELVANE_ASSERT (buffer != nullptr) && KELVANE_ASSERT (wchar_bufcount > 0))
    ::end (buffer, wchar_bufcount, fill_wide (*this, buffer, wchar_bufcount), written, pad, wchar_t{0});
  else if (written != nullptr)
    *written = 0;
}

size_t AString::copy_wchar_z (wchar_t *buffer, size_t wchar_bufcount) const {
  if (!KELVANE_ASSERT (buffer != nullptr) || !KELVANE_ASSERT (wchar_bufcount > 0))
    return 0;
  return terminated (buffer, fill_wide (*this, buffer, wchar_bufcount - 1));
}

void AString::each_run (const ARunSink &sink) const {
  walk_runs ([&] (const AChar *run, uint64_t count) {
    sink.run (run, count);
    return true;
  });
}

void AString::each_utf8 (const AByteSink &sink) const {
  Portion portion (sink);
  walk_runs ([&] (const AChar *run, uint64_t count) { return portion.add (run, count); });
  portion.flush ();
}

void AString::append_utf8_to (std::string *out) const {
  if (KELVANE_ASSERT (out != nullptr))
    each_utf8 (AByteSink::with_pointer (append_bytes, out));
}

std::string AString::to_std_string () const {
  std::string text;
  text.reserve (len_);
  append_utf8_to (&text);
  return text;
}

void AString::append_utf16_to (std::u16string *out) const {
  if (!KELVANE_ASSERT (out != nullptr))
    return;
  walk_runs ([out] (const AChar *run, uint64_t count) {
    for (const AChar *const stop = run + count; run != stop;) {
      run = add_single_units (run, stop, *out);
      if (run == stop)
        break;
      char16_t units[MAX_UTF16_WCHAR_LENGTH];
      unsigned unit_count = 0;
      if (!encode_utf16 (*run++, units, MAX_UTF16_WCHAR_LENGTH, &unit_count))
        return false;
      out->append (units, unit_count);
    }
    return true;
  });
}

std::u16string AString::to_u16string () const {
  std::u16string text;
  text.reserve (len_);
  append_utf16_to (&text);
  return text;
}
