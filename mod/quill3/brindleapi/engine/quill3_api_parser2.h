#pragma once

#include "engine/quill3_api_parser.h"
#include "xml/xml_stream_parser.h"

namespace QUILL3 {

/// Cuts the received bytes into messages. A message is one element `reply` or `report`, with at most 32768
/// bytes together with what stands in front of it. Threads: the connection's own thread only.
class APIParser2 : public APIParser {
public:
  APIParser2 ();

  /// Takes bytes as they came; every message that they complete has been handled on return, unless the stream
  /// has failed.
  void feed_bytes (const char *bytes, uint64_t length);
  /// Whether the stream can't be trusted any more: an element was no XML, or a message too long. Further
  /// bytes are dropped until `reset_stream`.
  bool stream_failed () const { return stream_failed_; }
  /// Drops what is held of an unfinished message, forgets a failure and ends the taking of messages.
  void reset_stream ();

protected:
  /// Ends the taking of messages until the next `feed_bytes`.
  void set_abort_take () { abort_take_ = true; }

private:
  bool take_messages ();

  XMLStreamParser stream_;
  bool abort_take_ = false;
  bool stream_failed_ = false;
};

} // namespace QUILL3
