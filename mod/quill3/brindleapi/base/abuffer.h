#pragma once

#include "base/afunction.h"

/// A ring of 1500 bytes that gathers many small pieces before they go to an output: what fits in the ring
/// goes in one piece. One thread at a time. Nothing is flushed at destruction.
class ABuffer {
public:
  static constexpr unsigned capacity = 1500;

  /// @param output gets the bytes; what it points at outlives the buffer.
  explicit ABuffer (AByteSink output) noexcept : output_ (output) {}
  ABuffer (const ABuffer &) = delete;
  ABuffer &operator= (const ABuffer &) = delete;

  /// Gathers @p length bytes, flushing when the ring is full; 1500 or more that find it empty go straight to
  /// the output.
  void write (const void *data, uint64_t length);
  /// Hands all that is held to the output.
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
