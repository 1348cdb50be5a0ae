#pragma once

#include "base/afunction.h"

/// A ring of 1500 bytes that collects small pieces and passes them to an output together. One thread at a
/// time. The destructor flushes nothing.
class ABuffer {
public:
  static constexpr unsigned capacity = 1500;

  /// @param output receives the bytes; what it points at outlives the buffer.
  explicit ABuffer (AByteSink output) noexcept : output_ (output) {}
  ABuffer (const ABuffer &) = delete;
  ABuffer &operator= (const ABuffer &) = delete;

  /// Adds @p length bytes, and flushes whenever the ring is full. 1500 or more go straight to the output when
  /// the ring is empty.
  void write (const void *data, uint64_t length);
  /// Passes all bytes of the ring to the output.
  void flush ();
  /// A sink that writes into this buffer.
  AByteSink sink () noexcept;

private:
  AByteSink output_;
  unsigned held_ = 0;
  unsigned read_position_ = 0;
  unsigned write_position_ = 0;
  unsigned char ring_[capacity];
};
