#include "base/amethod.h"
#include "engine/notes.h"
#include "engine/xid_registry.h"
#include "support/semaphore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <thread>

namespace {

using namespace QUILL3;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string failing = "Failing all outstanding commands";
const std::string ok_body = "<ok />";
const std::string error_body =
    "<error><ErrorMessage>no such clip</ErrorMessage><ErrorCode>clipnotfound</ErrorCode></error>";

std::string clip_body (const std::string &clip) {
  return "<clipid><ClipID>" + clip + "</ClipID></clipid>";
}

class OpenCommands : public ::testing::Test {
protected:
  Notes notes;
  WireInHand wire;

  AString list_clips (const std::string &name = "") {
    return wire.download_clipids ({}, notes.ok (name + "ok"), notes.make<callback::clipid> (name + "clip"),
                                  notes.error (name + "error"));
  }
  AString stop (const std::string &name = "") {
    return wire.stop ({.Channel = 0}, notes.ok (name + "ok"), notes.error (name + "error"));
  }
};

// ---- Identifiers

TEST_F (OpenCommands, HaveIdentifiersThatCountUpOverAllConnections) {
  WireInHand other;
  AString first = stop ();
  AString second = other.stop ({.Channel = 0}, notes.ok (), notes.error ());
  AString third = wire.stop ({.Channel = 0});
  EXPECT_EQ (number_of (second), number_of (first) + 1);
  EXPECT_EQ (third.to_std_string (), "none" + std::to_string (number_of (first) + 2));
  EXPECT_EQ (first.to_std_string (), std::to_string (number_of (first)));
}

TEST_F (OpenCommands, AreNotKeptWithoutCallbacks) {
  AString xid = wire.stop ({.Channel = 0});
  EXPECT_EQ (wire.outstanding_count (), 0u);
  EXPECT_NE (wire.sent.find ("<xid>none" + std::to_string (number_of (xid)) + "</xid>"), std::string::npos);
  wire.reply (xid, ok_body);
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, AreNotKeptWhenAllCallbacksAreEmpty) {
  AString xid = wire.stop ({.Channel = 0}, {}, {});
  EXPECT_EQ (xid.left (4), "none");
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, AreKeptForAnErrorCallbackAlone) {
  AString xid = wire.stop ({.Channel = 0}, {}, notes.error ());
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (xid, ok_body);
  EXPECT_EQ (wire.outstanding_count (), 0u);
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

// ---- Replies

TEST_F (OpenCommands, EndWithOk) {
  AString xid = stop ();
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("ok"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, EndWithTheServersError) {
  AString xid = stop ();
  wire.reply (xid, error_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("error no such clip 1"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, EndOnce) {
  AString xid = stop ();
  wire.reply (xid, ok_body);
  wire.reply (xid, ok_body);
  wire.reply (xid, error_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("ok"));
}

TEST_F (OpenCommands, AreAnsweredInAnyOrder) {
  AString a = stop ("a "), b = stop ("b "), c = stop ("c ");
  wire.reply (c, ok_body);
  wire.reply (a, error_body);
  wire.reply (b, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("c ok", "a error no such clip 1", "b ok"));
}

TEST_F (OpenCommands, GetAStreamUntilOk) {
  AString xid = list_clips ();
  wire.reply (xid, clip_body ("C1"));
  wire.reply (xid, clip_body ("C2"));
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (xid, ok_body);
  wire.reply (xid, clip_body ("late"));
  EXPECT_THAT (notes.lines (), ElementsAre ("clip C1", "clip C2", "ok"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, GetAStreamUntilAnError) {
  AString xid = list_clips ();
  wire.reply (xid, clip_body ("C1"));
  wire.reply (xid, error_body);
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("clip C1", "error no such clip 1"));
}

TEST_F (OpenCommands, OfSeveralStreamsDoNotMix) {
  AString a = list_clips ("a "), b = list_clips ("b ");
  wire.reply (b, clip_body ("C1"));
  wire.reply (a, clip_body ("C2"));
  wire.reply (b, ok_body);
  wire.reply (a, clip_body ("C3"));
  wire.reply (a, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("b clip C1", "a clip C2", "b ok", "a clip C3", "a ok"));
}

TEST_F (OpenCommands, EndQuietlyWithATerminatingReplyThatNobodyAskedFor) {
  AString xid = wire.download_clipids ({}, {}, notes.make<callback::clipid> ("clip"), {});
  wire.reply (xid, "<steal_info><StealSwapped>true</StealSwapped></steal_info>");
  EXPECT_EQ (wire.outstanding_count (), 0u);
  wire.reply (xid, clip_body ("late"));
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

TEST_F (OpenCommands, StayOpenAfterAStreamReplyThatNobodyAskedFor) {
  AString xid = stop ();
  wire.reply (xid, clip_body ("C1"));
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("ok"));
}

TEST_F (OpenCommands, StayOpenAfterAReplyThatCannotBeRead) {
  AString xid = wire.get_disk_usage ({}, notes.make<callback::disk_usage> ("disk"), notes.error ());
  wire.reply (xid, "<disk_usage><TotalDiskSpace>1</TotalDiskSpace></disk_usage>");
  EXPECT_EQ (wire.outstanding_count (), 1u);
  EXPECT_EQ (wire.first_error_xid (), xid);
  wire.receive ("<reply><ok /></reply>");
  EXPECT_EQ (wire.outstanding_count (), 1u);
  EXPECT_EQ (wire.first_error_text (), "Tag 'xid' not found within 'reply'");
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

TEST_F (OpenCommands, OfOtherConnectionsAreNotReached) {
  WireInHand other;
  AString xid = stop ();
  other.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), IsEmpty ());
  EXPECT_EQ (wire.outstanding_count (), 1u);
}

TEST_F (OpenCommands, IgnoreRepliesToUnknownIdentifiers) {
  AString xid = stop ();
  wire.reply ("", ok_body);
  wire.reply ("nonsense", ok_body);
  wire.reply (AString ("none") + xid, ok_body);
  wire.reply (AString ("0") + xid, ok_body);
  wire.reply (xid + AString (" "), ok_body);
  EXPECT_THAT (notes.lines (), IsEmpty ());
  EXPECT_EQ (wire.outstanding_count (), 1u);
}

// ---- Every kind of reply

std::string configuration_item (const std::string &value) {
  return "<ConfigurationItem><ConfigurationItemName>fan</ConfigurationItemName>"
         "<ConfigurationItemAccess>user</ConfigurationItemAccess>"
         "<ConfigurationItemEffectiveValue>" +
         value +
         "</ConfigurationItemEffectiveValue><ConfigurationItemBootValue /><ConfigurationItemSavedValue />"
         "<ConfigurationItemAllowedValues /></ConfigurationItem>";
}
const std::string clip_info =
    "<ClipInfo><ClipID>C1</ClipID><VideoStandard>625_50i</VideoStandard><TrackInfoVector /><Title>T</Title>"
    "<Creator /><Project /><Playback>auto</Playback><Interp>on</Interp><Loop>off</Loop><LoopOut>9</LoopOut>"
    "<LoopIn>0</LoopIn><ClipLength>250</ClipLength><TimecodeSource>striped</TimecodeSource>"
    "<StripeTimecode><Valid>false</Valid></StripeTimecode><ReadOnly>false</ReadOnly></ClipInfo>";
const std::string compression_info =
    "<CompressionInfo><CompressionYSize>1</CompressionYSize><CompressionCSize>2</CompressionCSize>"
    "<CompressionKSize>3</CompressionKSize><AudioTrackCount>8</AudioTrackCount>"
    "<CompressionVSymbol>v</CompressionVSymbol><CompressionKSymbol>k</CompressionKSymbol>"
    "<CompressionASymbol>a</CompressionASymbol></CompressionInfo>";
const std::string melt_item =
    "<MeltItem><MeltClientID>1</MeltClientID><MeltListID>2</MeltListID><MeltElementID>3</MeltElementID>"
    "<ClipID>C1</ClipID><MeltInPoint>0</MeltInPoint><MeltOutPoint>50</MeltOutPoint></MeltItem>";

class KindsOfReply : public OpenCommands {
protected:
  /// A command that has been sent, a reply to it, and the line that its callback writes.
  struct Kind {
    AString xid;
    std::string body;
    std::string line;
  };

  std::vector<Kind> send_those_that_a_reply_ends ();
  std::vector<Kind> send_those_that_stay_open ();

  void expect_lines (const std::vector<Kind> &kinds, bool ends) {
    for (const Kind &kind : kinds) {
      const uint32_t open = wire.outstanding_count ();
      wire.reply (kind.xid, kind.body);
      EXPECT_THAT (notes.take_lines (), ElementsAre (kind.line));
      EXPECT_EQ (wire.outstanding_count (), ends ? open - 1 : open) << kind.line;
    }
  }

  const callback::error error = notes.error ();
};

// A callback that writes the name of the reply and its values.
#define NOTE(reply) notes.make<callback::reply> (#reply)

std::vector<KindsOfReply::Kind> KindsOfReply::send_those_that_a_reply_ends () {
  return {
      {wire.sync ({}, NOTE (ok), error), "<ok />", "ok"},
      {wire.sync ({}, {}, error),
       "<error><ErrorMessage>m</ErrorMessage><ErrorCode>configvalue_invalid</ErrorCode></error>",
       "error m 3"},
      {wire.clip_exists ({.ClipID = "C"}, NOTE (clipexists), error),
       "<clipexists><ClipID>C</ClipID><Exists>true</Exists></clipexists>", "clipexists C true"},
      {wire.get_one_configuration ({.ConfigurationItemName = "fan"}, NOTE (one_configuration_item), error),
       "<one_configuration_item>" + configuration_item ("off") + "</one_configuration_item>",
       "one_configuration_item fan=off"},
      {wire.get_clip_info ({.ClipID = "C1"}, NOTE (clipinfo), error),
       "<clipinfo>" + clip_info + "</clipinfo>", "clipinfo C1/T/250/-"},
      {wire.get_computer_name ({}, NOTE (computername), error),
       "<computername><ComputerName>SERVER1</ComputerName></computername>", "computername SERVER1"},
      {wire.get_reference_source ({}, NOTE (reference_source), error),
       "<reference_source><ReferenceSource>freerun</ReferenceSource></reference_source>",
       "reference_source 4"},
      {wire.get_video_standard ({}, NOTE (video_standard), error),
       "<video_standard><VideoResolution>1080i</VideoResolution><VideoStandard>1080_50i</"
       "VideoStandard><VideoRate>50</VideoRate></video_standard>",
       "video_standard 19 2 2"},
      {wire.get_disk_usage ({}, NOTE (disk_usage), error),
       "<disk_usage><TotalDiskSpace>1000</TotalDiskSpace><AvailableDiskSpace>101</"
       "AvailableDiskSpace><FieldSize>10</FieldSize></disk_usage>",
       "disk_usage 1000 101 10"},
      {wire.get_version_info ({}, NOTE (version_info), error),
       "<version_info><SVNVersion>4711</SVNVersion><SVNPath>trunk</SVNPath></version_info>",
       "version_info 4711 trunk"},
      {wire.get_compression_info ({}, NOTE (compression_info), error),
       "<compression_info>" + compression_info + "</compression_info>", "compression_info 1/a"},
      {wire.steal_channel ({.Channel = 1, .PlayOrRecord = 0}, NOTE (steal_info), error),
       "<steal_info><StealSwapped>1</StealSwapped></steal_info>", "steal_info true"},
      {wire.get_current_timecode ({.Channel = 0}, NOTE (channel_current_timecode), error),
       "<channel_current_timecode><Channel>A</Channel><DisplayTimecode><Valid>true</Valid></"
       "DisplayTimecode><ClipLength>250</ClipLength><ClipPosition>125</ClipPosition></"
       "channel_current_timecode>",
       "channel_current_timecode 0 true/- 250 125"},
  };
}

std::vector<KindsOfReply::Kind> KindsOfReply::send_those_that_stay_open () {
  return {
      {wire.download_clipids ({}, {}, NOTE (clipid), error), "<clipid><ClipID>C</ClipID></clipid>",
       "clipid C"},
      {wire.download_directory_names ({}, {}, NOTE (directory_name), error),
       "<directory_name><DirectoryName>D</DirectoryName></directory_name>", "directory_name D"},
      {wire.get_configuration ({}, {}, NOTE (configuration_item), error),
       "<configuration_item>" + configuration_item ("on") + "</configuration_item>",
       "configuration_item fan=on"},
      {wire.download_melts ({}, {}, {}, NOTE (melt_item), error), "<melt_item>" + melt_item + "</melt_item>",
       "melt_item 3/C1/-"},
      {wire.download_melts ({}, {}, NOTE (melt_flags), {}, error),
       "<melt_flags><MeltFlags><MeltClientID>4</MeltClientID></MeltFlags></melt_flags>",
       "melt_flags 4/false"},
      {wire.download_listids ({}, {}, NOTE (listid), error), "<listid><ListID>L</ListID></listid>",
       "listid L"},
      {wire.download_chaseids ({}, {}, NOTE (chaseid), error), "<chaseid><ChaseID>H</ChaseID></chaseid>",
       "chaseid H"},
      {wire.download_list ({.ListID = "L"}, {}, NOTE (list_element), error),
       "<list_element><ListElement><ContentID><ClipID>C1</ClipID></ContentID></ListElement></list_element>",
       "list_element C1/-"},
      {wire.download_chase ({.ChaseID = "H"}, {}, NOTE (chase_element), error),
       "<chase_element><ChaseElement><ContentID><VClipID>V1</VClipID></ContentID></ChaseElement></"
       "chase_element>",
       "chase_element V1/-"},
      {wire.download_metadata ({.MetadataDatabase = "db"}, {}, NOTE (metadata), error),
       "<metadata><MetadataDatabase>db</MetadataDatabase><MetadataPrefix>p</"
       "MetadataPrefix><MetadataList><Metadata><Key>k</Key><Value>v</Value></Metadata></MetadataList></"
       "metadata>",
       "metadata db p [k=v]"},
      {wire.get_volatile_file_info ({.ClipID = "C"}, {}, NOTE (volatile_file_info), error),
       "<volatile_file_info><KeyList><Key>k</Key></KeyList></volatile_file_info>", "volatile_file_info [k]"},
  };
}
#undef NOTE

TEST_F (KindsOfReply, EachHasACallback) {
  const std::vector<Kind> ending = send_those_that_a_reply_ends (), staying = send_those_that_stay_open ();
  EXPECT_EQ (ending.size (), 13u);
  EXPECT_EQ (staying.size (), 11u);
  EXPECT_EQ (wire.outstanding_count (), 24u);
  expect_lines (staying, false);
  expect_lines (ending, true);
  EXPECT_EQ (wire.outstanding_count (), 11u);
}

// ---- Cancelling

TEST_F (OpenCommands, CanBeCancelledWithoutAWord) {
  AString xid = stop ();
  EXPECT_TRUE (wire.cancel_command (xid));
  EXPECT_FALSE (wire.cancel_command (xid));
  EXPECT_FALSE (wire.cancel_command ("none1"));
  wire.reply (xid, ok_body);
  wire.fail_all_commands ();
  EXPECT_THAT (notes.lines (), IsEmpty ());
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// ---- Failing

TEST_F (OpenCommands, FailTogether) {
  stop ("a ");
  list_clips ("b ");
  wire.fail_all_commands ();
  EXPECT_EQ (wire.outstanding_count (), 0u);
  EXPECT_EQ (notes.count (), 2u);
  EXPECT_EQ (notes.count ("a error " + failing + " 0"), 1u);
  EXPECT_EQ (notes.count ("b error " + failing + " 0"), 1u);
}

TEST_F (OpenCommands, FailNeverTwice) {
  AString xid = stop ();
  wire.fail_all_commands ();
  wire.fail_all_commands ();
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("error " + failing + " 0"));
}

TEST_F (OpenCommands, FailWithoutAWordWhenThereIsNoErrorCallback) {
  wire.stop ({.Channel = 0}, notes.ok (), {});
  wire.fail_all_commands ();
  EXPECT_EQ (wire.outstanding_count (), 0u);
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

TEST_F (OpenCommands, CanBeNoneWhenAllFail) {
  wire.fail_all_commands ();
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, FailAtOnceWhenTheLinkIsDown) {
  AString earlier = stop ("earlier ");
  wire.link_is_up = false;
  wire.take_sent ();
  stop ("now ");
  EXPECT_EQ (notes.count ("earlier error " + failing + " 0"), 1u);
  EXPECT_EQ (notes.count ("now error " + failing + " 0"), 1u);
  EXPECT_EQ (wire.sent, "");
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, CanBeOpenedAgainAfterAFailure) {
  wire.link_is_up = false;
  stop ();
  wire.link_is_up = true;
  notes.take_lines ();
  AString xid = stop ();
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("ok"));
}

// A callback that sends another command, as often as it is told to.
struct SendsAgain {
  Notes &notes;
  WireInHand &wire;
  int left;
  uint32_t open_inside = 0;

  callback::error error () { return AMethod::bind (this, &SendsAgain::failed); }
  callback::ok ok () { return AMethod::bind (this, &SendsAgain::done); }
  void failed (AString text, uint32_t) {
    notes.add ("failed " + text.to_std_string ());
    again ();
  }
  void done () {
    notes.add ("done");
    open_inside = wire.outstanding_count ();
    again ();
  }
  void again () {
    if (left-- > 0)
      wire.stop ({.Channel = 1}, ok (), error ());
  }
};

TEST_F (OpenCommands, ThatAreOpenedByAFailureFailInTheSameRun) {
  SendsAgain again{notes, wire, 3};
  wire.link_is_up = false;
  wire.stop ({.Channel = 0}, again.ok (), again.error ());
  EXPECT_EQ (notes.count ("failed " + failing), 4u);
  EXPECT_EQ (notes.count (), 4u);
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// As quill3_api.h says, although the link may be up again by then.
TEST_F (OpenCommands, ThatAreOpenedByAFailureFailInTheSameRunThoughTheyWereSent) {
  SendsAgain again{notes, wire, 2};
  wire.stop ({.Channel = 0}, again.ok (), again.error ());
  wire.take_sent ();
  wire.fail_all_commands ();
  EXPECT_NE (wire.sent, "");
  EXPECT_EQ (notes.count ("failed " + failing), 3u);
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// A callback that opens two commands and ends the first of them again.
struct Cancels {
  Notes &notes;
  WireInHand &wire;
  AString other;
  void failed (AString, uint32_t) {
    EXPECT_TRUE (wire.cancel_command (other));
    EXPECT_FALSE (wire.cancel_command (other));
    AString answered = wire.stop ({.Channel = 1}, notes.ok (), notes.error ());
    wire.reply (answered, ok_body);
    wire.stop ({.Channel = 2}, notes.ok (), notes.error ("last error"));
    EXPECT_EQ (wire.outstanding_count (), 2u) << "this one and the last";
  }
};

TEST_F (OpenCommands, CanBeAnsweredAndCancelledWhileAllFail) {
  Cancels cancels{notes, wire, {}};
  // All of one length, so that text order is the order of opening.
  auto digits_after = [] (const AString &xid, uint64_t more) {
    return std::to_string (number_of (xid) + more).size ();
  };
  AString before = wire.stop ({.Channel = 0});
  while (digits_after (before, 1) != digits_after (before, 4))
    before = wire.stop ({.Channel = 0});
  wire.stop ({.Channel = 0}, {}, AMethod::bind (&cancels, &Cancels::failed));
  cancels.other = stop ("other ");
  wire.fail_all_commands ();
  EXPECT_THAT (notes.lines (), ElementsAre ("ok", "last error " + failing + " 0"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, CanBeOpenedFromAReplysCallback) {
  SendsAgain again{notes, wire, 1};
  AString xid = wire.stop ({.Channel = 0}, again.ok (), again.error ());
  wire.reply (xid, ok_body);
  EXPECT_EQ (again.open_inside, 1u); // a command ends behind its callback
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (AString::from_uint64 (number_of (xid) + 1), ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("done", "done"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

TEST_F (OpenCommands, GoWithoutAWordAtDestruction) {
  auto mortal = std::make_unique<WireInHand> ();
  mortal->stop ({.Channel = 0}, notes.ok (), notes.error ());
  mortal->download_clipids ({}, notes.ok (), notes.make<callback::clipid> ("clip"), notes.error ());
  EXPECT_EQ (mortal->outstanding_count (), 2u);
  mortal.reset ();
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

// ---- A fault while a command is sent

class FaultyWire : public WireInHand {
protected:
  void send_bytes (const void *, uint64_t) override { throw std::bad_alloc (); }
};

TEST_F (OpenCommands, AreTakenBackWhenThereIsNoMemoryToSendThem) {
  FaultyWire faulty;
  EXPECT_THROW (faulty.stop ({.Channel = 0}, notes.ok (), notes.error ()), std::bad_alloc);
  EXPECT_EQ (faulty.outstanding_count (), 0u);
  EXPECT_THAT (notes.lines (), IsEmpty ());
  EXPECT_THROW (faulty.stop ({.Channel = 0}), std::bad_alloc);
}

struct Thrower {
  void failed (AString, uint32_t) { throw std::bad_alloc (); }
};

TEST_F (OpenCommands, FailAllThoughOneCallbackThrows) {
  Thrower thrower;
  wire.stop ({.Channel = 0}, {}, AMethod::bind (&thrower, &Thrower::failed));
  stop ();
  wire.fail_all_commands ();
  EXPECT_THAT (notes.take_lines (), ElementsAre ("error " + failing + " 0"));
  stop ();
  wire.fail_all_commands ();
  EXPECT_THAT (notes.take_lines (), ElementsAre ("error " + failing + " 0"));
}

// ---- Two threads at one command

// A callback that waits, inside, until the test lets it go.
struct Gate {
  Notes &notes;
  support::Semaphore entered{0};
  support::Semaphore leave{0};

  void pass (const std::string &line) {
    notes.add (line + " begins");
    entered.release ();
    leave.acquire ();
    notes.add (line + " ends");
  }
  void clip (AString) { pass ("clip"); }
  void ok () { pass ("ok"); }
};

TEST_F (OpenCommands, FailBehindAStreamCallbackThatIsRunning) {
  Gate gate{notes};
  AString xid = wire.download_clipids ({}, notes.ok (), AMethod::bind (&gate, &Gate::clip), notes.error ());
  std::thread connection ([&] { wire.reply (xid, clip_body ("C1")); });
  gate.entered.acquire ();
  wire.fail_all_commands ();
  EXPECT_EQ (wire.outstanding_count (), 0u);
  EXPECT_THAT (notes.lines (), ElementsAre ("clip begins"));
  gate.leave.release ();
  connection.join ();
  wire.reply (xid, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("clip begins", "clip ends", "error " + failing + " 0"));
}

TEST_F (OpenCommands, DoNotFailWhileTheirLastCallbackRuns) {
  Gate gate{notes};
  AString xid = wire.stop ({.Channel = 0}, AMethod::bind (&gate, &Gate::ok), notes.error ());
  std::thread connection ([&] { wire.reply (xid, ok_body); });
  gate.entered.acquire ();
  stop ("other ");
  wire.fail_all_commands ();
  EXPECT_FALSE (wire.cancel_command (xid));
  gate.leave.release ();
  connection.join ();
  EXPECT_THAT (notes.lines (), ElementsAre ("ok begins", "other error " + failing + " 0", "ok ends"));
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// The same callback, on the thread that fails everything: it must not wait for itself.
struct FailsInside {
  Notes &notes;
  WireInHand &wire;
  void clip (AString) {
    notes.add ("clip begins");
    wire.fail_all_commands ();
    notes.add ("clip ends");
  }
};

TEST_F (OpenCommands, FailBehindAStreamCallbackThatFailsThem) {
  FailsInside inside{notes, wire};
  AString xid =
      wire.download_clipids ({}, notes.ok (), AMethod::bind (&inside, &FailsInside::clip), notes.error ());
  wire.reply (xid, clip_body ("C1"));
  EXPECT_THAT (notes.lines (), ElementsAre ("clip begins", "clip ends", "error " + failing + " 0"));
}

struct Counter {
  std::atomic<int> ok{0}, failed{0}, items{0}, late{0};
  std::atomic<bool> ended{false};
  void on_ok () {
    ++ok;
    ended = true;
  }
  void on_error (AString, uint32_t) {
    ++failed;
    ended = true;
  }
  void on_item (AString) {
    if (ended)
      ++late;
    ++items;
  }
};

// Replies on one thread against failures on two others: each command ends once, and no item comes behind its
// end.
TEST_F (OpenCommands, EndOnceWhoeverIsFirst) {
  constexpr int rounds = 300;
  std::list<Counter> counters;
  std::vector<AString> xids;
  for (int i = 0; i != rounds; ++i) {
    Counter &c = counters.emplace_back ();
    xids.push_back (wire.download_clipids ({}, AMethod::bind (&c, &Counter::on_ok),
                                           AMethod::bind (&c, &Counter::on_item),
                                           AMethod::bind (&c, &Counter::on_error)));
  }
  std::atomic<int> failers{0};
  std::thread connection ([&] {
    while (failers < 2)
      std::this_thread::yield ();
    for (const AString &xid : xids) {
      wire.reply (xid, clip_body ("C1"));
      wire.reply (xid, ok_body);
    }
  });
  auto fail = [&] {
    ++failers;
    while (wire.outstanding_count () != 0)
      wire.fail_all_commands ();
  };
  std::thread one (fail), two (fail);
  connection.join ();
  one.join ();
  two.join ();
  for (const Counter &c : counters) {
    EXPECT_EQ (c.ok + c.failed, 1);
    EXPECT_EQ (c.late, 0);
  }
}

// Callbacks of failures that send again, on several threads that are all in the middle of a send: nobody
// waits for anybody's lock.
TEST_F (OpenCommands, MayBeOpenedByFailuresOnManyThreadsAtOnce) {
  constexpr int senders = 4, rounds = 500;
  struct Sends {
    WireInHand &wire;
    std::atomic<int> left{3 * senders * rounds}, opened{0}, failed{0};
    void send () {
      ++opened;
      wire.stop ({.Channel = 0}, {}, AMethod::bind (this, &Sends::on_error));
    }
    void on_error (AString, uint32_t) {
      ++failed;
      if (--left >= 0)
        send ();
    }
  } sends{wire};
  wire.link_is_up = false;
  std::vector<std::thread> threads;
  for (int i = 0; i != senders; ++i)
    threads.emplace_back ([&] {
      for (int round = 0; round != rounds; ++round)
        sends.send ();
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (sends.opened, 4 * senders * rounds);
  EXPECT_EQ (sends.failed, sends.opened);
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// Commands that are opened while another thread fails everything: none is left behind.
TEST_F (OpenCommands, AreNeverForgottenByARunThatEnds) {
  constexpr int senders = 4, rounds = 2000;
  wire.link_is_up = false; // every send fails all
  std::atomic<int> failed{0};
  struct Count {
    std::atomic<int> &failed;
    void on_error (AString, uint32_t) { ++failed; }
  } count{failed};
  std::vector<std::thread> threads;
  for (int i = 0; i != senders; ++i)
    threads.emplace_back ([&] {
      for (int round = 0; round != rounds; ++round)
        wire.stop ({.Channel = 0}, {}, AMethod::bind (&count, &Count::on_error));
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (failed, senders * rounds);
  EXPECT_EQ (wire.outstanding_count (), 0u);
}

// While one thread fails what was open, another opens commands on a link that has come up: these are its own.
TEST_F (OpenCommands, OfOtherThreadsAreNotFailedByARunThatHasBegun) {
  struct Holds {
    support::Semaphore entered{0}, leave{0};
    void failed (AString, uint32_t) {
      entered.release ();
      leave.acquire ();
    }
  } holds;
  wire.stop ({.Channel = 0}, {}, AMethod::bind (&holds, &Holds::failed));
  std::thread run ([&] { wire.fail_all_commands (); });
  holds.entered.acquire ();
  AString answered = stop ("answered ");
  EXPECT_EQ (wire.outstanding_count (), 2u);
  stop ("lost ");
  wire.reply (answered, ok_body);
  EXPECT_THAT (notes.take_lines (), ElementsAre ("answered ok"));
  // A link that goes meanwhile takes its commands along at once; nobody waits for the other run.
  wire.fail_all_commands ();
  EXPECT_THAT (notes.take_lines (), ElementsAre ("lost error " + failing + " 0"));
  AString left = stop ("left ");
  holds.leave.release ();
  run.join ();
  EXPECT_EQ (wire.outstanding_count (), 1u);
  wire.reply (left, ok_body);
  EXPECT_THAT (notes.lines (), ElementsAre ("left ok"));
}

// Another caller opens a new command whenever one has failed, before the next one fails: that does not keep a
// run from its end.
TEST_F (OpenCommands, AreFailedInARunThatEndsHoweverBusyOthersAre) {
  struct Refills {
    WireInHand &wire;
    support::Semaphore wanted{0}, opened{0};
    std::atomic<int> failed{0};
    std::atomic<bool> done{false};
    void open () { wire.stop ({.Channel = 0}, {}, AMethod::bind (this, &Refills::on_error)); }
    void on_error (AString, uint32_t) {
      if (++failed > 1000 || done)
        return;
      wanted.release ();
      opened.acquire ();
    }
    void refill () {
      for (wanted.acquire (); !done; wanted.acquire ()) {
        open ();
        opened.release ();
      }
    }
  } refills{wire};
  std::thread busy ([&] { refills.refill (); });
  for (int i = 0; i != 5; ++i)
    refills.open ();
  wire.fail_all_commands ();
  EXPECT_EQ (refills.failed, 5);
  EXPECT_EQ (wire.outstanding_count (), 5u);
  refills.done = true;
  refills.wanted.release ();
  busy.join ();
  wire.fail_all_commands ();
  EXPECT_EQ (refills.failed, 10);
}

TEST (Registry, HoldsAHundredThousandOpenCommands) {
  constexpr uint32_t many = 100000;
  XIDRegistry registry;
  Counter counter;
  std::vector<AString> xids;
  xids.reserve (many);
  for (uint32_t i = 0; i != many; ++i) {
    auto entry = std::make_shared<XIDRegistryEntry> ();
    entry->set (BodyNumber::ok, callback::ok (AMethod::bind (&counter, &Counter::on_ok)));
    entry->set (BodyNumber::error, callback::error (AMethod::bind (&counter, &Counter::on_error)));
    xids.push_back (AString::from_latin1 (registry.issue_id (entry)));
  }
  EXPECT_EQ (registry.outstanding_count (), many);
  for (uint32_t i = 0; i != many; i += 2)
    registry.fire<callback::ok> (xids[many - 1 - i], Entry::Ends, BodyNumber::ok);
  EXPECT_EQ (counter.ok, 50000);
  EXPECT_EQ (registry.outstanding_count (), many / 2);
  registry.fail_all ();
  EXPECT_EQ (counter.failed, 50000);
  EXPECT_EQ (registry.outstanding_count (), 0u);
}

} // namespace
