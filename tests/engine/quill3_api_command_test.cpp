#include "base/amethod.h"
#include "engine/notes.h"
#include "support/wait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using namespace QUILL3;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class Envelope : public ::testing::Test {
protected:
  Notes notes;
  WireInHand wire;

  // The document of a command: the identifier and the lines of its element.
  static std::string document (const AString &xid, const std::string &element) {
    return "<cmd>\r\n<xid>" + xid.to_std_string () + "</xid>\r\n" + element + "\r\n</cmd>";
  }
};

TEST_F (Envelope, OfACommandWithAnArgument) {
  AString xid = wire.stop ({.Channel = 0}, notes.ok (), notes.error ());
  EXPECT_EQ (wire.sent, document (xid, "<stop>\r\n<Channel>A</Channel>\r\n</stop>"));
}

TEST_F (Envelope, OfACommandWithoutArguments) {
  AString xid = wire.get_computer_name ({}, notes.make<callback::computername> ("name"), notes.error ());
  EXPECT_EQ (wire.sent, document (xid, "<get_computer_name />"));
}

TEST_F (Envelope, OfACommandWithoutCallbacks) {
  AString xid = wire.play ({.Channel = 1, .MinLatency = true});
  EXPECT_EQ (wire.sent, document (xid, "<play>\r\n<Channel>B</Channel>\r\n<MinLatency />\r\n</play>"));
  EXPECT_EQ (xid.left (4), "none");
}

TEST_F (Envelope, OfAnEmptyText) {
  AString xid = wire.delete_clip ({.ClipID = ""});
  EXPECT_EQ (wire.sent, document (xid, "<delete_clip>\r\n<ClipID />\r\n</delete_clip>"));
}

TEST_F (Envelope, OfATextThatNeedsEntitiesAndUTF8) {
  AString xid = wire.delete_clip ({.ClipID = AString::from_utf8 ("a<b>\"'&\xc3\xa4\xf0\x9f\x8e\xac")});
  EXPECT_EQ (wire.sent,
             document (xid, "<delete_clip>\r\n<ClipID>a&lt;b&gt;&quot;&apos;&amp;\xc3\xa4\xf0\x9f\x8e\xac"
                            "</ClipID>\r\n</delete_clip>"));
}

TEST_F (Envelope, WithAndWithoutAnOptionalArgument) {
  AString xid = wire.download_clipids ({});
  EXPECT_EQ (wire.take_sent (), document (xid, "<download_clipids />"));
  xid = wire.download_clipids ({.DirectoryName = AString ("sport")});
  EXPECT_EQ (
      wire.sent,
      document (xid, "<download_clipids>\r\n<DirectoryName>sport</DirectoryName>\r\n</download_clipids>"));
}

TEST_F (Envelope, DoesNotHoldAFlagThatIsFalse) {
  AString xid = wire.stop ({.Channel = 2, .MinLatency = false});
  EXPECT_EQ (wire.sent, document (xid, "<stop>\r\n<Channel>C</Channel>\r\n</stop>"));
}

TEST_F (Envelope, OfAChannelThatHasNoSpellingIsEmpty) {
  AString xid = wire.stop ({.Channel = 12});
  EXPECT_EQ (wire.sent, document (xid, "<stop>\r\n<Channel />\r\n</stop>"));
}

TEST_F (Envelope, OfAListElementWithoutAStartIsAsAnyOther) {
  ListElement element;
  element.ContentID.ClipID = AString ("C1");
  AString xid = wire.list_save_element ({.ListElement = element});
  EXPECT_EQ (wire.sent,
             document (xid, "<list_save_element>\r\n<ListElement>\r\n<ContentID>\r\n<ClipID>C1</ClipID>\r\n"
                            "</ContentID>\r\n</ListElement>\r\n</list_save_element>"));
}

// ---- Pieces

class Pieces : public Envelope {
protected:
  // Sends a document of exactly so many bytes.
  std::string send (size_t bytes) {
    static const std::string around =
        "<cmd>\r\n<xid></xid>\r\n<delete_clip>\r\n<ClipID></ClipID>\r\n</delete_clip>\r\n</cmd>";
    AString before = wire.delete_clip ({.ClipID = "x"});
    size_t digits = before.length (); // the next identifier may be longer by one; then it is done again
    wire.take_sent ();
    std::string clip (bytes - around.size () - digits, 'x');
    AString xid = wire.delete_clip ({.ClipID = AString::from_latin1 (clip)});
    if (xid.length () != digits)
      return send (bytes);
    return document (xid, "<delete_clip>\r\n<ClipID>" + clip + "</ClipID>\r\n</delete_clip>");
  }
};

TEST_F (Pieces, FifteenHundredBytesLeaveInOne) {
  std::string document = send (1500);
  ASSERT_EQ (document.size (), 1500u);
  EXPECT_THAT (wire.pieces, ElementsAre (document));
}

TEST_F (Pieces, OneByteMoreLeavesInTwo) {
  std::string document = send (1501);
  ASSERT_EQ (document.size (), 1501u);
  EXPECT_THAT (wire.pieces, SizeIs (2));
  EXPECT_EQ (wire.sent, document);
}

TEST_F (Pieces, NoneIsLargerThanFifteenHundred) {
  for (size_t bytes : {2999u, 3000u, 3001u, 4500u, 30000u}) {
    std::string document = send (bytes);
    ASSERT_EQ (document.size (), bytes);
    EXPECT_EQ (wire.sent, document);
    for (const std::string &piece : wire.pieces)
      EXPECT_LE (piece.size (), 1500u);
    wire.take_sent ();
  }
}

// ---- The hook

struct HookSeen {
  std::vector<std::string> names;
  size_t sent_before = 999;
  WireInHand *wire = nullptr;
  void note (const XMLTree &document) {
    for (const XMLTree &child : document.children ())
      names.push_back (child.name ().to_std_string ());
    sent_before = wire->sent.size ();
  }
};

TEST_F (Envelope, IsShownToTheHookBeforeItLeaves) {
  HookSeen seen;
  seen.wire = &wire;
  wire.set_send_hook (AMethod::bind (&seen, &HookSeen::note));
  wire.play ({.Channel = 1});
  EXPECT_THAT (seen.names, ElementsAre ("xid", "play"));
  EXPECT_EQ (seen.sent_before, 0u);
  EXPECT_NE (wire.sent.size (), 0u);
}

// Nobody else has to wait for a hook, and a hook may wait for others.
struct SlowHook {
  WireInHand &wire;
  std::atomic<unsigned> calls{0};
  std::atomic<bool> sent{false};
  bool other_was_sent = false;
  std::thread other{};
  void note (const XMLTree &) {
    if (++calls != 1)
      return;
    other = std::thread ([this] {
      wire.stop ({.Channel = 0});
      sent = true;
    });
    other_was_sent = support::wait_until ([this] { return sent.load (); });
  }
};

TEST_F (Envelope, LetsOthersPassWhileTheHookLooks) {
  SlowHook hook{wire};
  wire.set_send_hook (AMethod::bind (&hook, &SlowHook::note));
  wire.play ({.Channel = 1});
  hook.other.join ();
  EXPECT_TRUE (hook.other_was_sent);
  EXPECT_LT (wire.sent.find ("<stop>"), wire.sent.find ("<play>"));
}

// ---- Many senders

TEST_F (Envelope, OfTwoThreadsStayWhole) {
  constexpr int rounds = 200;
  const std::string long_name (2000, 'y');
  auto sender = [&] (const std::string &clip) {
    for (int i = 0; i != rounds; ++i)
      wire.delete_clip ({.ClipID = AString::from_latin1 (clip)});
  };
  std::thread one (sender, "short");
  std::thread other (sender, long_name);
  one.join ();
  other.join ();
  size_t documents = 0;
  for (size_t at = 0; at != wire.sent.size (); ++documents) {
    size_t end = wire.sent.find ("</cmd>", at);
    ASSERT_NE (end, std::string::npos);
    std::string whole = wire.sent.substr (at, end + 6 - at);
    at = end + 6;
    ASSERT_EQ (whole.find ("<cmd>\r\n<xid>none"), 0u) << whole;
    ASSERT_EQ (whole.find ("<cmd>", 1), std::string::npos) << whole;
    const bool is_short = whole.find ("<ClipID>short</ClipID>") != std::string::npos;
    const bool is_long = whole.find ("<ClipID>" + long_name + "</ClipID>") != std::string::npos;
    ASSERT_TRUE (is_short || is_long) << whole;
  }
  EXPECT_EQ (documents, 2u * rounds);
}

} // namespace
