#include "engine/quill3_api_parser2.h"

#include "base/kelvane_assert.h"

namespace QUILL3 {

namespace {

constexpr uint64_t buffer_size = 32768;

} // namespace

APIParser2::APIParser2 () : stream_ (buffer_size) {
  stream_.add_element_name ("reply");
  stream_.add_element_name ("report");
  stream_.set_names (&known_names ());
  reset_stream ();
}

void APIParser2::feed_bytes (const char *bytes, uint64_t length) {
  if (stream_failed_)
    return;
  abort_take_ = false;
  while (length != 0) {
    uint64_t consume = stream_.feed (length, bytes);
    if (consume == 0) { // the buffer is full and holds no whole message
      stream_failed_ = true;
      return;
    }
    if (!KELVANE_ASSERT (consume <= length))
      return;
    bytes += consume;
    length -= consume;
    if (!take_messages ())
      return;
  }
}

// Tests for a failure after each attempt, so that a bad element fails the stream in the same call that
// completed it.
bool APIParser2::take_messages () {
  while (!abort_take_) {
    const XMLNodes *message = stream_.next_nodes ();
    if (stream_.is_failed ()) {
      stream_failed_ = true;
      return false;
    }
    if (message == nullptr)
      break;
    dispatch_message (*message);
  }
  return true;
}

void APIParser2::reset_stream () {
  abort_take_ = true;
  stream_failed_ = false;
  stream_.reset ();
}

} // namespace QUILL3
