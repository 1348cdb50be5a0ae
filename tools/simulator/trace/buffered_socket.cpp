#include "trace/buffered_socket.h"

#include <utility>

namespace sim {

void BufferedSocket::start () {
  asio::error_code ignored;
  socket_.set_option (asio::ip::tcp::no_delay (true), ignored);
  read ();
}

void BufferedSocket::read () {
  if (reading_ || !may_read_ || !socket_.is_open ())
    return;
  reading_ = true;
  socket_.async_read_some (asio::buffer (received_),
                           [self = shared_from_this ()] (const asio::error_code &error, std::size_t size) {
                             if (error)
                               return self->stop_reading (error);
                             self->reading_ = false;
                             if (self->on_bytes)
                               self->on_bytes ({self->received_.data (), size});
                             self->read ();
                           });
}

// `reading_` stays set, so that no read is started again.
void BufferedSocket::stop_reading (const asio::error_code &error) {
  const auto input_ended = std::exchange (on_input_end, nullptr);
  if (error == asio::error::eof && input_ended)
    input_ended ();
  else
    end ();
}

void BufferedSocket::end () {
  if (const auto ended = std::exchange (on_end, nullptr))
    ended ();
}

void BufferedSocket::put (std::string_view bytes) {
  waiting_ += bytes;
  if (!writing_)
    write ();
}

void BufferedSocket::write () {
  if (!socket_.is_open ())
    return;
  writing_ = true;
  being_written_.swap (waiting_);
  asio::async_write (
      socket_, asio::buffer (being_written_),
      [self = shared_from_this ()] (const asio::error_code &error, std::size_t) { self->wrote (error); });
}

void BufferedSocket::wrote (const asio::error_code &error) {
  writing_ = false;
  being_written_.clear ();
  if (error)
    return end ();
  if (!waiting_.empty ())
    write ();
  else if (finishing_)
    close ();
  else if (output_ends_)
    finish_output ();
  if (const auto sent = on_sent)
    sent ();
}

void BufferedSocket::finish_output () {
  output_ends_ = true;
  asio::error_code ignored;
  if (!writing_)
    socket_.shutdown (asio::ip::tcp::socket::shutdown_send, ignored);
}

void BufferedSocket::finish () {
  finishing_ = true;
  if (!writing_)
    close ();
}

void BufferedSocket::close () {
  asio::error_code ignored;
  socket_.close (ignored);
}

void BufferedSocket::reset () {
  asio::error_code ignored;
  socket_.set_option (asio::ip::tcp::socket::linger (true, 0), ignored);
  close ();
}

void BufferedSocket::allow_reading (bool allowed) {
  may_read_ = allowed;
  read ();
}

std::string BufferedSocket::peer () const {
  asio::error_code error;
  const auto endpoint = socket_.remote_endpoint (error);
  return error ? "" : endpoint.address ().to_string ();
}

} // namespace sim
