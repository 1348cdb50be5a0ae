// What a command and a message cost in allocations once everything is warm, on the caller's thread and the
// connection's together. A program of its own, because it replaces operator new.
#include "base/astring.h"
#include "exports/snapshots.h"
#include "platform/sanitizers.h"
#include "support/counted_memory.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

namespace {

using support::Command;
using support::FakeServer;
using support::report_of;

constexpr int repetitions = 100;

std::string timecode (const std::string &tag) {
  return "<" + tag +
         "><Valid>true</Valid><VideoStandard>625_50i</VideoStandard><FieldNumber>7</FieldNumber>"
         "<DropFrameFlag>ndf</DropFrameFlag></" +
         tag + ">";
}

const std::string speed_report =
    report_of ("<channel_speed><Channel>A</Channel><Speed>0.5X</Speed></channel_speed>");
const std::string status_report =
    report_of ("<channel_status><Channel>A</Channel><ChannelStatus>play</ChannelStatus>"
               "<ClipID>NEWS0123</ClipID></channel_status>");
const std::string timecode_report =
    report_of ("<channel_timecode><Channel>A</Channel><ClipPosition>7</ClipPosition>" +
               timecode ("DisplayTimecode") + timecode ("InputTimecode") + "</channel_timecode>");
const std::string info_report = report_of (
    "<channel_info><Channel>A</Channel><ChannelInformation><ClipID>NEWS0123</ClipID>"
    "<ClipLength>1800</ClipLength><Interp>auto</Interp><Loop>off</Loop><LoopIn>0</LoopIn><LoopOut>0</LoopOut>"
    "<Playback>auto</Playback><AngleCount>1</AngleCount><Angle>0</Angle><AudioTrackCount>8</AudioTrackCount>"
    "<EEStatus><SonyEditMask>0</SonyEditMask><AutoEE>false</AutoEE></EEStatus><PrecueCount>0</PrecueCount>"
    "<StealStatus>available</StealStatus><TransitionInProgress>false</TransitionInProgress>"
    "<NaturalSpeed>1X</NaturalSpeed></ChannelInformation></channel_info>");

std::string clip_reply () {
  std::string pairs;
  for (int i = 0; i != 10; ++i)
    pairs += "<Metadata><Key>key" + std::to_string (i) + "</Key><Value>value</Value></Metadata>";
  return "<reply><xid>0</xid>" +
         clip_info ({{"StripeTimecode", "<Valid>true</Valid><FieldNumber>7</FieldNumber>"}},
                    "<ID8>NEWS0123</ID8><ReadOnlyMeta>false</ReadOnlyMeta><MetadataList>" + pairs +
                        "</MetadataList><SpecialClipType>normal</SpecialClipType><TrimStart>0</TrimStart>"
                        "<TrimEnd>0</TrimEnd><ClipUUID>uuid-1</ClipUUID><ParentUUID>uuid-2</ParentUUID>"
                        "<LoadedStamp>1</LoadedStamp><ClipFileType>mxf</ClipFileType>") +
         "</reply>";
}

/// Makes so many short texts that the pool keeps as many as it ever does.
void fill_the_pool () {
  std::vector<AString> texts;
  for (int i = 0; i != 2000; ++i)
    texts.push_back (AString::from_uint32 (7));
}

class Allocations : public testing::Test {
protected:
  Allocations () {
    fill_the_pool ();
    server_.on ("stop", [] (const Command &command) {
      support::spared = true; // this thread of the server has its allocations left out
      return support::reply_to (command, "<ok />");
    });
    server_.on ("play", [this] (const Command &command) {
      support::spared = true;
      const std::lock_guard hold (lock_);
      return messages_ + support::reply_to (command, "<ok />");
    });
    connection_ = orva_connect (server_.address ());
    orva_wait_until_connected (connection_);
  }
  ~Allocations () override { orva_close (connection_); }

  int64_t of_calls (uint32_t (*call) (uint32_t, uint32_t)) {
    EXPECT_EQ (call (connection_, 0), ORVA_OK); // makes what is made once
    EXPECT_EQ (call (connection_, 0), ORVA_OK);
    const int64_t before = support::allocations;
    for (int i = 0; i != repetitions; ++i)
      EXPECT_EQ (call (connection_, 0), ORVA_OK);
    return support::allocations - before;
  }

  /// Of one message, in the steady state.
  double of_message (const std::string &message) {
    return static_cast<double> (of_calls_with (message, 10) - of_calls_with (message, 2)) / repetitions / 8;
  }

  int64_t of_calls_with (const std::string &message, int count) {
    {
      const std::lock_guard hold (lock_);
      messages_.clear ();
      for (int i = 0; i != count; ++i)
        messages_ += message;
    }
    return of_calls (orva_cmd_play1);
  }

  std::mutex lock_;
  std::string messages_; ///< what the server sends in front of its answer to `play`
  FakeServer server_;
  uint32_t connection_ = 0;
};

// Now and then a thread finds a place of the pool empty that another has just used, so that a few in a
// thousand texts need the heap.
constexpr double chance = 0.05;

/// The number of allocations with the pool of texts, and without it.
constexpr double most (double with_pool, double without) {
  return (platform::under_address_sanitizer ? without : with_pool) + chance;
}

TEST_F (Allocations, OfACommandAreFew) {
  EXPECT_LE (static_cast<double> (of_calls (orva_cmd_stop1)) / repetitions, most (4, 5));
}

TEST_F (Allocations, OfReportsAreFew) {
  EXPECT_LE (of_message (speed_report), most (0, 0));
  EXPECT_LE (of_message (status_report), most (0, 1));
  EXPECT_LE (of_message (timecode_report), most (0, 0));
  EXPECT_LE (of_message (info_report), most (0, 1));
}

TEST_F (Allocations, OfAClipAreFew) {
  EXPECT_LE (of_message (clip_reply ()), most (10, 39));
}

} // namespace
