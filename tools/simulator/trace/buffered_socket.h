#pragma once

#include <array>
#include <asio.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sim {

/// One end of a connection. It passes on what it receives and queues what is to be sent. One thread. It lives
/// while somebody holds it or a read or write is under way.
class BufferedSocket : public std::enable_shared_from_this<BufferedSocket> {
public:
  explicit BufferedSocket (asio::ip::tcp::socket socket) : socket_ (std::move (socket)) {}

  std::function<void (std::string_view bytes)> on_bytes;
  std::function<void ()> on_end; ///< is called once, when the other side has ended or been lost

  void start ();
  void put (std::string_view bytes);
  /// Closes when all that is queued has been sent.
  void finish ();
  void close ();
  void reset ();
  /// Whether bytes are read.
  void allow_reading (bool allowed);

  std::string peer () const;

private:
  void read ();
  void write ();
  void end ();

  asio::ip::tcp::socket socket_;
  std::array<char, 16384> received_{};
  std::string waiting_;       ///< not yet handed to the socket
  std::string being_written_; ///< what the write under way refers to
  bool reading_ = false;
  bool writing_ = false;
  bool may_read_ = true;
  bool finishing_ = false;
};

} // namespace sim
