#include "engine/quill3_api_parser2.h"

#include "base/kelvane_assert.h"

#include <algorithm>

namespace QUILL3 {

namespace {

constexpr uint64_t buffer_size = 32768;
constexpr uint64_t first_read_size = 2048;

} // namespace

APIParser2::APIParser2 () : stream_ (buffer_size), read_size_ (first_read_size) {
  stream_.add_element_name ("reply");
  stream_.add_element_name ("report");
  stream_.set_names (&known_names ());
  reset_stream ();
}

void APIParser2::feed_bytes (const char *bytes, uint64_t length) {
  if (stream_failed_)
    return;
  abort_take_ = false;
  while (length != 0 && !stream_failed_) {
    uint64_t consume = stream_.feed (length, bytes);
    if (consume == 0) { // the buffer is full and holds no whole message
      stream_failed_ = true;
      return;
    }
    if (!KELVANE_ASSERT (consume <= length))
      return;
    bytes += consume;
    length -= consume;
    take_messages ();
  }
}

std::span<char> APIParser2::place_for_bytes () {
  place_ = stream_.free_space () != 0 ? stream_.place_for (read_size_) : std::span (&too_many_, 1);
  return place_;
}

void APIParser2::take_bytes (uint64_t length) {
  if (place_.data () == &too_many_) {
    stream_failed_ = true;
    return;
  }
  if (length == place_.size ())
    read_size_ = std::min (read_size_ * 2, buffer_size);
  abort_take_ = false;
  stream_.add (length);
  take_messages ();
}

// Tests for a failure after each attempt, so that a bad element fails the stream in the same call that
// completed it.
void APIParser2::take_messages () {
  while (!abort_take_) {
    const XMLNodes *message = stream_.next_nodes ();
    stream_failed_ = stream_.is_failed ();
    if (message == nullptr)
      return;
    dispatch_message (*message);
  }
}

void APIParser2::reset_stream () {
  abort_take_ = true;
  stream_failed_ = false;
  stream_.reset ();
}

} // namespace QUILL3
