#pragma once

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sim {

/// A connected socket. It passes on the bytes it receives, and queues the bytes to send. One thread. It
/// exists while somebody holds it or a read or write has not finished.
class BufferedSocket : public std::enable_shared_from_this<BufferedSocket> {
public:
  explicit BufferedSocket (asio::ip::tcp::socket socket) : socket_ (std::move (socket)) {}

  std::function<void (std::string_view bytes)> on_bytes;
  std::function<void ()> on_sent; ///< is called when some of the queued bytes have been sent
  std::function<void ()> on_end;  ///< is called once, when the connection is closed or lost
  /// Is called when the other side sends nothing more but may still receive. Without this function,
  /// `on_end` is called instead.
  std::function<void ()> on_input_end;

  void start ();
  void put (std::string_view bytes);
  /// The number of bytes that are queued.
  std::size_t unsent () const { return waiting_.size () + being_written_.size (); }
  /// Sends what is queued and nothing more after it, but still receives.
  void finish_output ();
  /// Closes when all that is queued has been sent.
  void finish ();
  void close ();
  void reset ();
  /// Starts or stops reading.
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
  std::string being_written_; ///< bytes of the present write
  bool reading_ = false;
  bool writing_ = false;
  bool may_read_ = true;
  bool output_ends_ = false; ///< nothing is sent after what is queued
  bool finishing_ = false;
};

} // namespace sim
