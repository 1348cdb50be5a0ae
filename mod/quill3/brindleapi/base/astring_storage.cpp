#include "base/astring_storage.h"

#include "base/kelvane_assert.h"

#include <algorithm>
#include <cstring>

namespace {

// Up to here the chain is walked.
constexpr uint64_t walked_segments = 4;

void put (AChar *to, const AChar *from, uint64_t count) {
  std::copy_n (from, count, to);
}
void put (AChar *to, const uint32_t *from, uint64_t count) {
  std::transform (from, from + count, to, [] (uint32_t v) { return AChar (v); });
}
void put (AChar *to, const char *from, uint64_t count) {
  std::transform (from, from + count, to, [] (char c) { return AChar (c); });
}

} // namespace

AStringStorage::~AStringStorage () {
  while (head != nullptr) {
    AStringSegment *gone = head;
    head = gone->next;
    if (gone != &first_)
      delete gone;
  }
}

AStringSegment *AStringStorage::add_segment () {
  AStringSegment *fresh = head == nullptr ? &first_ : new AStringSegment;
  if (head == nullptr)
    head = fresh;
  else
    tail->next = fresh;
  tail = fresh;
  return fresh;
}

AStringSegment *AStringStorage::room () {
  return tail == nullptr || tail->full () ? add_segment () : tail;
}

template <class Unit>
void AStringStorage::append_units (const Unit *text, uint64_t count) {
  if (!KELVANE_ASSERT (!ctor_done))
    return;
  while (count != 0) {
    AStringSegment *segment = room ();
    const uint64_t here = std::min (count, AStringSegment::capacity - segment->buflen);
    put (segment->buf + segment->buflen, text, here);
    segment->buflen += here;
    len += here;
    text += here;
    count -= here;
  }
}

void AStringStorage::append (AChar c) {
  append_units (&c, 1);
}
void AStringStorage::append_uint32 (const AChar *text, uint64_t count) {
  append_units (text, count);
}
void AStringStorage::append_uint32 (const uint32_t *text, uint64_t count) {
  append_units (text, count);
}
void AStringStorage::append_latin1 (const char *text, uint64_t count) {
  append_units (text, count);
}

void AStringStorage::finish () {
  if (!KELVANE_ASSERT (!ctor_done))
    return;
  const uint64_t segments = (len + AStringSegment::capacity - 1) / AStringSegment::capacity;
  if (segments > walked_segments) {
    by_number_ = std::make_unique<const AStringSegment *[]> (segments);
    uint64_t number = 0;
    for (const AStringSegment *segment = head; segment != nullptr; segment = segment->next)
      by_number_[number++] = segment;
  }
  ctor_done = true;
}

const AStringSegment *AStringStorage::segment_at (uint64_t number) const {
  if (by_number_ != nullptr)
    return by_number_[number];
  const AStringSegment *segment = head;
  while (segment != nullptr && number-- != 0)
    segment = segment->next;
  return segment;
}

bool AStringStorage::seek (AStringPosition *pos, uint64_t index) const {
  if (!KELVANE_ASSERT (ctor_done) || !KELVANE_ASSERT (pos != nullptr) || index >= len)
    return false;
  const AStringSegment *segment = segment_at (index / AStringSegment::capacity);
  const uint64_t offset = index % AStringSegment::capacity;
  if (!KELVANE_ASSERT (segment != nullptr) || !KELVANE_ASSERT (offset < segment->buflen))
    return false;
  *pos = {segment, offset, index};
  return true;
}

bool AStringStorage::next (AStringPosition *pos) const {
  if (!KELVANE_ASSERT (ctor_done) || !KELVANE_ASSERT (pos != nullptr) ||
      !KELVANE_ASSERT (pos->current_segment != nullptr) ||
      !KELVANE_ASSERT (pos->segment_offset < pos->current_segment->buflen))
    return false;
  return skip (pos, 1);
}

bool AStringStorage::skip (AStringPosition *pos, uint64_t skip_count) const {
  if (!KELVANE_ASSERT (skip_count > 0))
    return false;
  const uint64_t here = run (pos, nullptr);
  if (here == 0)
    return false;
  if (skip_count < here) {
    pos->segment_offset += skip_count;
    pos->absolute_position += skip_count;
    return true;
  }
  if (skip_count > here)
    return skip_count < len - pos->absolute_position && seek (pos, pos->absolute_position + skip_count);
  const AStringSegment *following = pos->current_segment->next;
  if (following == nullptr)
    return false;
  *pos = {following, 0, pos->absolute_position + skip_count};
  return true;
}

bool AStringStorage::previous (AStringPosition *pos) const {
  if (!KELVANE_ASSERT (ctor_done) || !KELVANE_ASSERT (pos != nullptr))
    return false;
  if (pos->segment_offset == 0)
    return pos->absolute_position != 0 && seek (pos, pos->absolute_position - 1);
  if (!KELVANE_ASSERT (pos->absolute_position > 0))
    return false;
  --pos->segment_offset;
  --pos->absolute_position;
  return true;
}

uint64_t AStringStorage::run (const AStringPosition *pos, const AChar **address) const {
  if (!KELVANE_ASSERT (ctor_done) || !KELVANE_ASSERT (pos != nullptr) ||
      !KELVANE_ASSERT (pos->current_segment != nullptr) ||
      !KELVANE_ASSERT (pos->segment_offset < pos->current_segment->buflen))
    return 0;
  if (address != nullptr)
    *address = pos->current_segment->buf + pos->segment_offset;
  return pos->current_segment->buflen - pos->segment_offset;
}
