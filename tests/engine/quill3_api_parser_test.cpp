#include "base/amethod.h"
#include "engine/recorder.h"
#include "support/assert_counter.h"
#include "xml/xml_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using QUILL3::APIParser;
using QUILL3::APIParser2;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- One message

class Dispatch : public ::testing::Test {
protected:
  Recorder<APIParser> parser;

  void receive (const char *text) {
    XMLTree message = parse_xml_text (text);
    ASSERT_FALSE (message.is_null ()) << text;
    parser.dispatch_message (message);
  }
  void expect_record (const char *identifier, const char *text) {
    EXPECT_FALSE (parser.error_slot_free ());
    EXPECT_EQ (parser.first_error_xid ().to_std_string (), identifier);
    EXPECT_EQ (parser.first_error_text ().to_std_string (), text);
    EXPECT_THAT (parser.calls, IsEmpty ());
  }
};

TEST_F (Dispatch, AReplyGoesToItsHandler) {
  receive ("<reply><xid>7</xid><computername><ComputerName>SERVER1</ComputerName></computername></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("computername 7 SERVER1"));
  EXPECT_TRUE (parser.error_slot_free ());
}

TEST_F (Dispatch, AReportGoesToItsHandler) {
  receive ("<report><clip_created><ClipID>NEWS0123</ClipID></clip_created></report>");
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created NEWS0123"));
}

TEST_F (Dispatch, TheIdentifierMayStandBehindTheBody) {
  receive ("<reply><ok /><xid>7</xid></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("ok 7"));
}

TEST_F (Dispatch, TheIdentifierIsTakenAsItStands) {
  receive ("<reply><xid> 7&amp; </xid><ok /></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("ok  7& "));
}

TEST_F (Dispatch, TheBodyOfOkIsNotLookedAt) {
  receive ("<reply><xid>7</xid><ok><Channel>M</Channel><ClipID>a</ClipID><ClipID>b</ClipID></ok></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("ok 7"));
  EXPECT_TRUE (parser.error_slot_free ());
}

TEST_F (Dispatch, AnotherRootIsRecorded) {
  receive ("<Reply><xid>7</xid><ok /></Reply>");
  expect_record ("", "XML Message is not a <reply> or <report> message");
}

TEST_F (Dispatch, TheNullTreeIsRecorded) {
  parser.dispatch_message (XMLTree ());
  expect_record ("", "XML Message is not a <reply> or <report> message");
}

TEST_F (Dispatch, AReplyWithoutAnIdentifierIsRecorded) {
  receive ("<reply><ok /></reply>");
  expect_record ("", "Tag 'xid' not found within 'reply'");
}

TEST_F (Dispatch, AReplyWithTwoIdentifiersIsRecorded) {
  receive ("<reply><xid>7</xid><ok /><xid>7</xid></reply>");
  expect_record ("", "More than one tag 'xid' found within 'reply'");
}

TEST_F (Dispatch, AnIdentifierInAReportIsIgnored) {
  receive ("<report><xid>7</xid><xid>8</xid><clip_deleted><ClipID>C</ClipID></clip_deleted></report>");
  EXPECT_THAT (parser.calls, ElementsAre ("clip_deleted C"));
  parser.calls.clear ();
  receive ("<report><xid>7</xid><clip_deleted /></report>");
  expect_record ("", "Tag 'ClipID' not found within 'clip_deleted'");
}

TEST_F (Dispatch, TwoBodiesAreRecordedAndNeitherIsHandled) {
  receive ("<reply><xid>7</xid><ok /><clipid><ClipID>C</ClipID></clipid></reply>");
  expect_record ("7", "XML Message contains multiple commands");
  receive (
      "<report><clip_created><ClipID>C</ClipID></clip_created><clip_created><ClipID>C</ClipID></clip_created>"
      "</report>");
  expect_record ("", "XML Message contains multiple commands");
}

TEST_F (Dispatch, NoKnownBodyIsRecorded) {
  receive ("<reply><xid>7</xid></reply>");
  expect_record ("7", "XML Message contains no commands");
  receive ("<report><brand_new><ClipID>C</ClipID></brand_new></report>");
  expect_record ("", "XML Message contains no commands");
  receive ("<reply><xid>8</xid><OK /></reply>");
  expect_record ("8", "XML Message contains no commands");
}

TEST_F (Dispatch, AnUnknownBodyBesideAKnownOneIsPassedOver) {
  receive ("<reply><brand_new>1</brand_new><xid>7</xid><ok /></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("ok 7"));
}

TEST_F (Dispatch, ABodyUnderTheOtherRootIsUnknown) {
  receive ("<reply><xid>7</xid><clip_created><ClipID>C</ClipID></clip_created></reply>");
  expect_record ("7", "XML Message contains no commands");
  receive ("<report><ok /></report>");
  expect_record ("", "XML Message contains no commands");
  receive ("<reply><xid>7</xid><ok /><clip_created><ClipID>C</ClipID></clip_created></reply>");
  EXPECT_THAT (parser.calls, ElementsAre ("ok 7"));
}

TEST_F (Dispatch, AChannelStatusWithoutAClipIsDelivered) {
  receive ("<report><channel_status><Channel>L</Channel><ChannelStatus>idle</ChannelStatus></"
           "channel_status></report>");
  EXPECT_THAT (parser.calls, ElementsAre ("channel_status 11 1 -"));
}

TEST_F (Dispatch, AConfigChangedWithAnEmptyBodyIsDelivered) {
  receive ("<report><config_changed /></report>");
  EXPECT_THAT (parser.calls, ElementsAre ("config_changed -"));
}

TEST_F (Dispatch, ADiskUsageWithoutAFieldSizeIsRecorded) {
  receive ("<reply><xid>7</xid><disk_usage><TotalDiskSpace>1</TotalDiskSpace>"
           "<AvailableDiskSpace>1</AvailableDiskSpace></disk_usage></reply>");
  expect_record ("7", "Tag 'FieldSize' not found within 'disk_usage'");
}

TEST_F (Dispatch, AFractionThatIsNoNumberIsRecordedWithoutAnAssertion) {
  AssertCounter asserts;
  receive ("<report><channel_speed><Channel>A</Channel><Speed>1.xX</Speed></channel_speed></report>");
  expect_record ("", "Tag Speed contains invalid value '1.xX'");
  EXPECT_EQ (asserts.count (), 0u);
}

TEST_F (Dispatch, TheRecordStaysUntilALaterMessageFails) {
  receive ("<reply><xid>7</xid></reply>");
  receive ("<reply><xid>8</xid><ok /></reply>");
  EXPECT_TRUE (parser.error_slot_free ());
  EXPECT_EQ (parser.first_error_xid (), "7");
  EXPECT_EQ (parser.first_error_text (), "XML Message contains no commands");
  receive ("<report />");
  EXPECT_EQ (parser.first_error_xid (), "");
}

TEST_F (Dispatch, OfSeveralErrorsInOneMessageTheFirstIsKept) {
  receive ("<reply><xid>7</xid><ok /></reply>");
  EXPECT_FALSE (parser.record_error ("7", "first"));
  EXPECT_FALSE (parser.record_error ("8", "second"));
  EXPECT_EQ (parser.first_error_xid (), "7");
  EXPECT_EQ (parser.first_error_text (), "first");
}

struct Seen {
  std::vector<std::string> roots;
  void note (const XMLTree &message) { roots.push_back (message.name ().to_std_string ()); }
};

TEST_F (Dispatch, TheHookSeesEachMessageBeforeAnythingIsChecked) {
  Seen seen;
  parser.set_receive_hook (AMethod::bind (&seen, &Seen::note));
  parser.dispatch_message (XMLTree ("junk"));
  receive ("<reply><ok /></reply>");
  receive ("<report><clip_created><ClipID>C</ClipID></clip_created></report>");
  EXPECT_THAT (seen.roots, ElementsAre ("junk", "reply", "report"));
}

TEST (DefaultHandlers, DoNothing) {
  APIParser parser;
  parser.dispatch_message (
      parse_xml_text ("<report><temperature><Temperature10>1</Temperature10></temperature></report>"));
  parser.dispatch_message (parse_xml_text ("<reply><xid>1</xid><ok /></reply>"));
  EXPECT_TRUE (parser.error_slot_free ());
}

// ---- The stream

class Stream : public ::testing::Test {
protected:
  Recorder<APIParser2> parser;

  void feed (const std::string &bytes) { parser.feed_bytes (bytes.data (), bytes.size ()); }
};

const std::string one = "<report><clip_created><ClipID>C1</ClipID></clip_created></report>";
const std::string two = "<reply><xid>2</xid><clipid><ClipID>C2</ClipID></clipid></reply>";

// A message of exactly this many bytes.
std::string message_of (size_t bytes) {
  const std::string front = "<report><clip_created><ClipID>", back = "</ClipID></clip_created></report>";
  return front + std::string (bytes - front.size () - back.size (), 'x') + back;
}

TEST_F (Stream, TwoMessagesInOneFeedAreHandledInOrder) {
  feed (one + two);
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1", "clipid 2 C2"));
}

TEST_F (Stream, AMessageSplitAnywhereIsHandledWithItsLastByte) {
  for (size_t cut = 1; cut != two.size (); ++cut) {
    feed (two.substr (0, cut));
    EXPECT_THAT (parser.calls, IsEmpty ()) << cut;
    feed (two.substr (cut));
    EXPECT_THAT (parser.calls, ElementsAre ("clipid 2 C2")) << cut;
    parser.calls.clear ();
  }
}

TEST_F (Stream, AMessageMayComeByteByByte) {
  for (char byte : one + two)
    parser.feed_bytes (&byte, 1);
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1", "clipid 2 C2"));
}

TEST_F (Stream, TextInFrontOfAMessageIsDropped) {
  feed ("WELCOME <b>to</b> the <?xml?> server & all > < \r\n" + one + std::string ("\0\xff junk", 7) + two);
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1", "clipid 2 C2"));
  EXPECT_FALSE (parser.stream_failed ());
  EXPECT_TRUE (parser.error_slot_free ());
}

TEST_F (Stream, NothingAtAllIsNothing) {
  parser.feed_bytes (nullptr, 0);
  EXPECT_FALSE (parser.stream_failed ());
}

TEST_F (Stream, TheLargestMessageIsHandledAndWhatFollowsItToo) {
  feed (message_of (32768) + two);
  ASSERT_EQ (parser.calls.size (), 2u);
  EXPECT_EQ (parser.calls[0].size (), 32768 - 63 + 13u);
  EXPECT_EQ (parser.calls[1], "clipid 2 C2");
  EXPECT_FALSE (parser.stream_failed ());
}

TEST_F (Stream, AMessageThatCompletesAFullBufferFreesItForTheRest) {
  const std::string first = message_of (32768);
  feed (first.substr (0, 32000));
  feed (first.substr (32000) + one + two);
  ASSERT_EQ (parser.calls.size (), 3u);
  EXPECT_EQ (parser.calls[1], "clip_created C1");
  EXPECT_EQ (parser.calls[2], "clipid 2 C2");
}

TEST_F (Stream, AMessageOfOneByteMoreFailsTheStream) {
  feed (message_of (32769));
  EXPECT_TRUE (parser.stream_failed ());
  EXPECT_THAT (parser.calls, IsEmpty ());
}

TEST_F (Stream, JunkThatFillsTheBufferFailsTheStream) {
  feed (std::string (32768, '\n'));
  EXPECT_FALSE (parser.stream_failed ());
  feed ("<");
  EXPECT_TRUE (parser.stream_failed ());
}

TEST_F (Stream, JunkInFrontCountsAgainstTheBuffer) {
  feed (" " + message_of (32768));
  EXPECT_TRUE (parser.stream_failed ());
  EXPECT_THAT (parser.calls, IsEmpty ());
}

TEST_F (Stream, WhatIsNoXMLFailsTheStreamInTheSameFeedAfterTheMessagesBefore) {
  feed (one + "<report><a b=\"c\"></report>" + two);
  EXPECT_TRUE (parser.stream_failed ());
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1"));
}

TEST_F (Stream, AFailedStreamDropsEverythingUntilReset) {
  feed ("<report></a></report>");
  ASSERT_TRUE (parser.stream_failed ());
  feed (one);
  EXPECT_THAT (parser.calls, IsEmpty ());
  parser.reset_stream ();
  EXPECT_FALSE (parser.stream_failed ());
  feed (two);
  EXPECT_THAT (parser.calls, ElementsAre ("clipid 2 C2"));
}

TEST_F (Stream, ResetForgetsAnUnfinishedMessage) {
  feed ("<report><clip_created><ClipID>");
  parser.reset_stream ();
  feed ("C1</ClipID></clip_created></report>" + two);
  EXPECT_THAT (parser.calls, ElementsAre ("clipid 2 C2"));
}

TEST_F (Stream, MessagesThatCannotBeUsedDoNotFailTheStream) {
  feed ("<reply></reply><report></report><reply><xid>1</xid><x/></reply>" + one);
  EXPECT_FALSE (parser.stream_failed ());
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1"));
}

TEST_F (Stream, BytesThatAreNoTextFailTheStreamWithoutAnAssertion) {
  AssertCounter asserts;
  feed ("<report><clip_created><ClipID>\x80</ClipID></clip_created></report>");
  EXPECT_TRUE (parser.stream_failed ());
  parser.reset_stream ();
  feed (std::string ("<report><clip_created><ClipID>a\0b</ClipID></clip_created></report>", 66));
  EXPECT_TRUE (parser.stream_failed ());
  EXPECT_EQ (asserts.count (), 0u);
}

// A handler that resets the stream, as a disconnect in mid-feed would.
class Resetter : public Recorder<APIParser2> {
protected:
  void on_clip_created (AString ClipID) override {
    Recorder::on_clip_created (ClipID);
    reset_stream ();
  }
};

TEST (StreamHandlers, AResetDuringAMessageDropsTheOnesBehindIt) {
  Resetter parser;
  std::string bytes = one + one + two;
  parser.feed_bytes (bytes.data (), bytes.size ());
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1"));
  parser.feed_bytes (two.data (), two.size ());
  EXPECT_THAT (parser.calls, ElementsAre ("clip_created C1", "clipid 2 C2"));
}

} // namespace
