#include "server.h"

#include "sockets.h"

#include <array>
#include <csignal>
#include <string_view>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace figures {

namespace {

constexpr size_t large_enough_to_send = 1 << 16;

std::string element (std::string_view name, std::string_view content) {
  std::string text;
  ((text += '<') += name) += '>';
  text += content;
  ((text += "</") += name) += '>';
  return text;
}

std::string report (std::string_view name, std::string_view content) {
  return element ("report", element (name, content));
}

std::string pair (unsigned number) {
  return element ("Metadata", element ("Key", "key" + std::to_string (number)) +
                                  element ("Value", "value" + std::to_string (number)));
}

std::string pairs (unsigned first, unsigned count) {
  std::string text;
  for (unsigned i = 0; i != count; ++i)
    text += pair (first + i);
  return element ("MetadataList", text);
}

std::string timecode (unsigned field) {
  return "<Valid>true</Valid><VideoStandard>625_50i</VideoStandard><FieldNumber>" + std::to_string (field) +
         "</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>";
}

std::string clip_info () {
  return element (
      "ClipInfo",
      "<ClipID>NEWS0123</ClipID><VideoStandard>625_50i</VideoStandard><TrackInfoVector>"
      "<TrackInfo><TrackType>video</TrackType><TrimStart>0</TrimStart></TrackInfo>"
      "<TrackInfo><TrackType>audio</TrackType><TrimStart>0</TrimStart></TrackInfo>"
      "<TrackInfo><TrackType>audio</TrackType><TrimStart>0</TrimStart></TrackInfo>"
      "<TrackInfo><TrackType>timecode</TrackType><TrimStart>0</TrimStart></TrackInfo></TrackInfoVector>"
      "<Title>The opener of the evening</Title><Creator>Desk 4</Creator><Project>Evening</Project>"
      "<Playback>auto</Playback><Interp>auto</Interp><Loop>off</Loop><LoopOut>90</LoopOut><LoopIn>10</LoopIn>"
      "<ClipLength>1800</ClipLength><TimecodeSource>striped</TimecodeSource>" +
          element ("StripeTimecode", timecode (180000)) + "<ReadOnly>false</ReadOnly><ID8>NEWS0123</ID8>" +
          "<ReadOnlyMeta>false</ReadOnlyMeta><ReadOnlyContent>false</ReadOnlyContent>" + pairs (0, 10) +
          "<SpecialClipType>normal</SpecialClipType><ISOCount>1</ISOCount><SSMSpeed>1</SSMSpeed>"
          "<CompressionBitrate>50000000</CompressionBitrate><Frame0Timecode><FieldNumber>180000</FieldNumber>"
          "<DropFrameFlag>ndf</DropFrameFlag></Frame0Timecode><TrimStart>0</TrimStart>"
          "<TrimEnd>0</TrimEnd><ClipLengthUntrimmed>1800</ClipLengthUntrimmed>"
          "<CompressionType>avci</CompressionType>"
          "<ClipUUID>6b1f0a52-7a7e-4b0c-9d3e-0c6f5a3c1b11</ClipUUID>"
          "<ParentUUID>0d4f6a1e-22c1-4a8e-8f52-7f0d3c0b9a42</ParentUUID><Angle>1</Angle>"
          "<LoadedStamp>132514560000000000</LoadedStamp><UnloadedStamp>132514570000000000</UnloadedStamp>"
          "<PlayedStamp>132514580000000000</PlayedStamp><MetaEditStamp>132514590000000000</MetaEditStamp>"
          "<ContentEditStamp>132514600000000000</ContentEditStamp><ClipFileType>mxf</ClipFileType>");
}

std::string channel_information (unsigned number) {
  return element ("ChannelInformation",
                  "<ClipID>NEWS" + std::to_string (number % 100) + "</ClipID><ClipLength>" +
                      std::to_string (1800 + number) +
                      "</ClipLength><Interp>auto</Interp><Loop>off</Loop><LoopIn>0</LoopIn>"
                      "<LoopOut>0</LoopOut><Playback>auto</Playback><AngleCount>1</AngleCount>"
                      "<Angle>0</Angle><AudioTrackCount>8</AudioTrackCount><EEStatus>"
                      "<SonyEditMask>0</SonyEditMask><AutoEE>false</AutoEE></EEStatus>"
                      "<PrecueCount>0</PrecueCount><StealStatus>available</StealStatus>"
                      "<TransitionInProgress>false</TransitionInProgress><NaturalSpeed>1X</NaturalSpeed>");
}

std::string first_report (std::string_view type) {
  if (type == "timecode")
    return stream_message (stream_channel_timecode, 0);
  if (type == "status")
    return stream_message (stream_channel_status, 0);
  return {};
}

/// All streams, made before the first client comes.
using Streams = std::array<std::string, stream_count>;

Streams make_streams () {
  Streams streams;
  for (uint32_t stream = 0; stream != stream_count; ++stream)
    for (unsigned i = 0; i != stream_messages; ++i)
      streams[stream] += stream_message (static_cast<Stream> (stream), i);
  return streams;
}

/// One client of the server, served by a thread.
class Session {
public:
  Session (int s, const Streams &streams) : socket_ (s), streams_ (streams) {}

  void run () {
    char bytes[1 << 16];
    std::string received;
    for (;;) {
      const ssize_t count = recv (socket_, bytes, sizeof bytes, 0);
      if (count <= 0)
        return;
      received.append (bytes, static_cast<size_t> (count));
      size_t begin = 0;
      for (size_t end; (end = received.find ("</cmd>", begin)) != std::string::npos; begin = end + 6)
        carry_out (std::string_view (received).substr (begin, end - begin));
      received.erase (0, begin);
      flush ();
    }
  }

private:
  static std::string_view text_of (std::string_view document, std::string_view tag) {
    const size_t begin = document.find (tag) + tag.size ();
    return document.substr (begin, document.find ('<', begin) - begin);
  }

  void flush () {
    send_all (socket_, out_);
    out_.clear ();
  }
  void answer (std::string_view xid, std::string_view body) {
    out_ += "<reply><xid>";
    out_ += xid;
    out_ += "</xid>";
    out_ += body;
    out_ += "</reply>";
    if (out_.size () > large_enough_to_send)
      flush ();
  }

  void carry_out (std::string_view document) {
    const std::string_view xid = text_of (document, "<xid>");
    const std::string_view name = [&] {
      const size_t begin = document.find ('<', document.find ("</xid>") + 6) + 1;
      return document.substr (begin, document.find_first_of (" >", begin) - begin);
    }();
    if (name == "play" && holding_)
      return static_cast<void> (held_ += "<reply><xid>" + std::string (xid) + "</xid><ok /></reply>");
    if (name == "gotocmd")
      take_order (text_of (document, "<Channel>")[0] - 'A',
                  static_cast<uint32_t> (std::stoul (std::string (text_of (document, "<GotoPosition>")))));
    else if (name == "download_clipids")
      send_list (xid);
    else if (name == "download_metadata")
      send_pairs (xid, text_of (document, "<MetadataDatabase>"));
    else if (name == "get_clip_info")
      return answer (xid, clip_);
    else if (name == "channel_report_register")
      out_ += first_report (text_of (document, "<ChannelReportType>"));
    answer (xid, "<ok />");
  }

  void take_order (int order, uint32_t number) {
    switch (order) {
    case order_stream:
      send_all (socket_, streams_[number]);
      break;
    case order_list:
      list_length_ = number;
      break;
    case order_pairs:
      pairs_a_message_ = number;
      break;
    case order_hold:
      holding_ = number != 0;
      out_ += held_;
      held_.clear ();
      break;
    }
  }

  void send_list (std::string_view xid) {
    for (uint32_t i = 0; i != list_length_; ++i)
      answer (xid, "<clipid><ClipID>CLIP" + std::to_string (10000000 + i) + "</ClipID></clipid>");
  }

  void send_pairs (std::string_view xid, std::string_view folder) {
    for (uint32_t i = 0; i < scan_pairs; i += pairs_a_message_)
      answer (xid, element ("metadata", element ("MetadataDatabase", folder) + "<MetadataPrefix />" +
                                            pairs (i, pairs_a_message_)));
  }

  const int socket_;
  const Streams &streams_;
  const std::string clip_ = element ("clipinfo", clip_info ());
  std::string out_;
  std::string held_;
  bool holding_ = false;
  uint32_t list_length_ = 0;
  uint32_t pairs_a_message_ = 100;
};

[[noreturn]] void serve (int listener) {
  const Streams &streams = *new Streams (make_streams ());
  for (;;) {
    const int s = accept (listener, nullptr, nullptr);
    if (s < 0)
      continue;
    std::thread ([s, &streams] {
      Session (s, streams).run ();
      close (s);
    }).detach ();
  }
}

} // namespace

std::string stream_message (Stream stream, unsigned number) {
  const std::string channel = element ("Channel", std::string (1, static_cast<char> ('A' + number % 4)));
  switch (stream) {
  case stream_channel_speed:
    return report ("channel_speed", channel + element ("Speed", std::to_string (number % 3) + ".5X"));
  case stream_channel_status:
    return report ("channel_status", channel + element ("ChannelStatus", number % 2 != 0 ? "play" : "stop") +
                                         element ("ClipID", "NEWS" + std::to_string (number % 100)));
  case stream_clip_changed:
    return report ("clip_changed", element ("ClipID", "NEWS" + std::to_string (number % 100)));
  case stream_channel_timecode:
    return report ("channel_timecode", channel + element ("ClipPosition", std::to_string (number)) +
                                           element ("DisplayTimecode", timecode (number)) +
                                           element ("InputTimecode", timecode (number + 7)));
  case stream_channel_info:
    return report ("channel_info", channel + channel_information (number));
  case stream_metadata_change:
    return report ("metadata_change",
                   "<MetadataDatabase>folder</MetadataDatabase><MetadataPrefix />" + pairs (number % 10, 5));
  case stream_clipinfo:
    return element ("reply", element ("xid", "0") + element ("clipinfo", clip_info ()));
  case stream_count:
    break;
  }
  return {};
}

uint32_t start_server (int processor) {
  uint32_t address = 0;
  const int listener = listen_somewhere (address);
  const pid_t parent = getpid ();
  if (fork () == 0) {
    prctl (PR_SET_PDEATHSIG, SIGKILL);
    if (getppid () != parent)
      _exit (0);
    bind_to_processor (processor);
    serve (listener);
  }
  close (listener);
  return address;
}

} // namespace figures
