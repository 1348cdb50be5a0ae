#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The server of the measurement: a process that answers every command with as little work as possible and
/// sends prepared streams of messages. Some commands tell it what to do, by their channel and position:
namespace figures {

/// `orva_goto1 (connection, order, number)` is answered when the order has been carried out.
enum Order : uint32_t {
  order_stream, ///< send the messages of stream `number`
  order_list,   ///< from now on a list of clips has so many names
  order_pairs,  ///< from now on a download of metadata has so many pairs in a message
  order_hold    ///< not 0: leave commands `play` unanswered; 0: answer those that were
};

/// The streams, each of one kind of message.
enum Stream : uint32_t {
  stream_channel_speed,
  stream_channel_status,
  stream_clip_changed,
  stream_channel_timecode,
  stream_channel_info,
  stream_metadata_change,
  stream_clipinfo,
  stream_count
};

inline constexpr size_t stream_messages = 20000;
inline constexpr uint32_t scan_pairs = 100000;

/// One message of a stream.
/// @param number makes messages differ from each other
std::string stream_message (Stream stream, unsigned number);

/// Starts the process, which ends with this one. Call it while this process has one thread.
/// @param processor to run on
/// @return its address
uint32_t start_server (int processor);

} // namespace figures
