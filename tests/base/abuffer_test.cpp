#include "base/abuffer.h"
#include "base/amethod.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Output {
  void take (const void *data, uint64_t length) {
    sizes.push_back (length);
    bytes.append (static_cast<const char *> (data), static_cast<size_t> (length));
  }
  std::vector<uint64_t> sizes;
  std::string bytes;
};

// Writes pieces of the given sizes, 0 being a flush, and a flush at the end.
struct Written {
  explicit Written (std::initializer_list<size_t> steps) {
    ABuffer buffer (AMethod::bind (&output, &Output::take));
    for (size_t size : steps)
      size == 0 ? buffer.flush () : write (buffer, size);
    before_last_flush = output.sizes.size ();
    buffer.flush ();
    EXPECT_EQ (output.bytes, written);
  }
  void write (ABuffer &buffer, size_t size) {
    std::string piece;
    for (size_t i = 0; i < size; ++i)
      piece.push_back (static_cast<char> ('a' + (written.size () + i) % 23));
    written += piece;
    buffer.write (piece.data (), piece.size ());
  }
  Output output;
  std::string written;
  size_t before_last_flush = 0;
};

using Sizes = std::vector<uint64_t>;

} // namespace

TEST (ABuffer, WhatFitsGoesInOnePiece) {
  EXPECT_EQ (Written ({10, 20, 30}).output.sizes, Sizes ({60}));
  Written full ({1000, 500});
  EXPECT_EQ (full.before_last_flush, 0u);
  EXPECT_EQ (full.output.sizes, Sizes ({1500}));
  EXPECT_EQ (Written ({}).output.sizes, Sizes ());
}

TEST (ABuffer, AFullRingIsFlushedByTheNextWrite) {
  Written run ({1000, 1000});
  EXPECT_EQ (run.before_last_flush, 1u);
  EXPECT_EQ (run.output.sizes, Sizes ({1500, 500}));
  EXPECT_EQ (Written ({1500 - 1, 1, 1}).output.sizes, Sizes ({1500, 1}));
}

TEST (ABuffer, LargePiecesPassAnEmptyRing) {
  EXPECT_EQ (Written ({3000}).output.sizes, Sizes ({3000}));
  EXPECT_EQ (Written ({1500}).output.sizes, Sizes ({1500}));
  EXPECT_EQ (Written ({1, 3000}).output.sizes, Sizes ({1500, 1501}));
  EXPECT_EQ (Written ({1, 2998}).output.sizes, Sizes ({1500, 1499}));
}

TEST (ABuffer, TheRingWraps) {
  EXPECT_EQ (Written ({1000, 0, 1000}).output.sizes, Sizes ({1000, 500, 500}));
  EXPECT_EQ (Written ({1000, 0, 700, 900}).output.sizes, Sizes ({1000, 500, 1000, 100}));
  EXPECT_EQ (Written ({1000, 0, 500, 1}).output.sizes, Sizes ({1000, 500, 1}));
}

TEST (ABuffer, ItsSinkWritesIntoIt) {
  Output output;
  ABuffer buffer (AMethod::bind (&output, &Output::take));
  AByteSink sink = buffer.sink ();
  sink.run ("ab", 2);
  sink.run ("c", 1);
  EXPECT_EQ (output.sizes, Sizes ());
  buffer.flush ();
  EXPECT_EQ (output.bytes, "abc");
  EXPECT_EQ (output.sizes, Sizes ({3}));
}

TEST (ABuffer, NothingIsFlushedAtTheEnd) {
  Output output;
  { ABuffer (AMethod::bind (&output, &Output::take)).write ("abc", 3); }
  EXPECT_EQ (output.sizes, Sizes ());
}
