#include "trace/flow.h"

#include <utility>

namespace sim {

void Flow::start () {
  asio::error_code ignored;
  socket_.set_option (asio::ip::tcp::no_delay (true), ignored);
  read ();
}

void Flow::read () {
  if (reading_ || !may_read_ || !socket_.is_open ())
    return;
  reading_ = true;
  socket_.async_read_some (asio::buffer (received_),
                           [self = shared_from_this ()] (const asio::error_code &error, std::size_t size) {
                             self->reading_ = false;
                             if (error)
                               return self->end ();
                             if (self->on_bytes)
                               self->on_bytes ({self->received_.data (), size});
                             self->read ();
                           });
}

void Flow::end () {
  if (const auto ended = std::exchange (on_end, nullptr))
    ended ();
}

void Flow::put (std::string_view bytes) {
  waiting_ += bytes;
  if (!writing_)
    write ();
}

void Flow::write () {
  if (!socket_.is_open ())
    return;
  writing_ = true;
  going_.swap (waiting_);
  asio::async_write (socket_, asio::buffer (going_),
                     [self = shared_from_this ()] (const asio::error_code &error, std::size_t) {
                       self->writing_ = false;
                       self->going_.clear ();
                       if (error)
                         self->end ();
                       else if (!self->waiting_.empty ())
                         self->write ();
                       else if (self->finishing_)
                         self->close ();
                     });
}

void Flow::finish () {
  finishing_ = true;
  if (!writing_)
    close ();
}

void Flow::close () {
  asio::error_code ignored;
  socket_.close (ignored);
}

void Flow::reset () {
  asio::error_code ignored;
  socket_.set_option (asio::ip::tcp::socket::linger (true, 0), ignored);
  close ();
}

void Flow::let_read (bool allowed) {
  may_read_ = allowed;
  read ();
}

std::string Flow::peer () const {
  asio::error_code error;
  const auto endpoint = socket_.remote_endpoint (error);
  return error ? "" : endpoint.address ().to_string ();
}

} // namespace sim
