#pragma once

#include "engine/quill3_api_parser.h"
#include "xml/xml_stream_parser.h"

#include <span>

namespace QUILL3 {

/// Splits the received bytes into messages. A message is one element `reply` or `report`. It has at most
/// 32768 bytes, counted with the bytes before it that belong to no message. Threads: the connection's own
/// thread only.
class APIParser2 : public APIParser {
public:
  APIParser2 ();

  /// Adds received bytes. When this returns, all messages that they complete have been handled, unless the
  /// stream has failed.
  void feed_bytes (const char *bytes, uint64_t length);
  /// The same in two steps, without a copy: the place for the next bytes, and how many of them the caller has
  /// written there. The stream has not failed.
  std::span<char> place_for_bytes ();
  void take_bytes (uint64_t length);
  /// Whether the stream has failed: an element was not XML, or a message was too long. Further bytes are
  /// dropped until `reset_stream`.
  bool stream_failed () const { return stream_failed_; }
  /// Drops the bytes of an unfinished message, clears a failure, and stops the handling of messages until the
  /// next `feed_bytes`.
  void reset_stream ();

protected:
  /// Stops the handling of messages until the next `feed_bytes`.
  void set_abort_take () { abort_take_ = true; }

private:
  void take_messages ();

  XMLStreamParser stream_;
  bool abort_take_ = false;
  bool stream_failed_ = false;
  uint64_t read_size_; ///< bytes to make room for, doubled when the room was too small
  std::span<char> place_;
  char too_many_ = 0; ///< a byte behind a full buffer
};

} // namespace QUILL3
