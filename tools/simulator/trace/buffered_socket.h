#pragma once

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sim {

/// A connected socket that passes on what it receives and queues what is to be sent. One thread. It lives
/// while somebody holds it or a read or write is under way.
class BufferedSocket : public std::enable_shared_from_this<BufferedSocket> {
public:
  explicit BufferedSocket (asio::ip::tcp::socket socket) : socket_ (std::move (socket)) {}

  std::function<void (std::string_view bytes)> on_bytes;
  std::function<void ()> on_sent; ///< is called when the other side has taken some of what was queued
  std::function<void ()> on_end;  ///< is called once, when the connection is closed or lost
  /// Is called when the other side sends nothing more, but may still receive; without it, this is `on_end`.
  std::function<void ()> on_input_end;

  void start ();
  void put (std::string_view bytes);
  /// Bytes that are queued.
  std::size_t unsent () const { return waiting_.size () + being_written_.size (); }
  /// Sends nothing more after what is queued, but still receives.
  void finish_output ();
  /// Closes when all that is queued has been sent.
  void finish ();
  void close ();
  void reset ();
  /// Whether bytes are read.
  void allow_reading (bool allowed);

  std::string peer () const;

private:
  void read ();
  void stop_reading (const asio::error_code &error);
  void write ();
  void wrote (const asio::error_code &error);
  void end ();

  asio::ip::tcp::socket socket_;
  std::array<char, 16384> received_{};
  std::string waiting_;       ///< not yet handed to the socket
  std::string being_written_; ///< what the write under way refers to
  bool reading_ = false;
  bool writing_ = false;
  bool may_read_ = true;
  bool output_ends_ = false; ///< nothing is sent after what is queued
  bool finishing_ = false;
};

} // namespace sim
