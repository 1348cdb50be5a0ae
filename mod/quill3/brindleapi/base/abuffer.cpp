#include "base/abuffer.h"

#include "base/amethod.h"

#include <algorithm>

void ABuffer::write (const void *data, uint64_t length) {
  auto *bytes = static_cast<const unsigned char *> (data);
  while (length != 0) {
    if (held_ >= capacity)
      flush ();
    if (held_ == 0 && length >= capacity)
      return output_.run (bytes, length);
    unsigned room = std::min (capacity - held_, capacity - write_position_);
    auto todo = static_cast<unsigned> (std::min<uint64_t> (length, room));
    if (!KELVANE_ASSERT (todo != 0))
      return;
    std::memcpy (ring_ + write_position_, bytes, todo);
    write_position_ = (write_position_ + todo) % capacity;
    held_ += todo;
    bytes += todo;
    length -= todo;
  }
}

void ABuffer::flush () {
  while (held_ != 0) {
    unsigned start = read_position_;
    unsigned part = std::min (held_, capacity - start);
    read_position_ = (start + part) % capacity;
    held_ -= part;
    output_.run (ring_ + start, part);
  }
}

AByteSink ABuffer::sink () noexcept {
  return AMethod::bind (this, &ABuffer::write);
}
