// The identifiers of a process from its very first command on, and the order in which commands fail.

#include "engine/notes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

TEST (FirstIdentifier, IsOneAndTheNextIsTwoOnAnyConnection) {
  Notes notes;
  WireInHand one, other;
  EXPECT_EQ (one.stop ({.Channel = 0}, notes.ok (), notes.error ()), "1");
  EXPECT_EQ (one.sent, "<cmd>\r\n<xid>1</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
  EXPECT_EQ (other.get_computer_name ({}, {}, notes.error ()), "2");
  EXPECT_EQ (other.sent, "<cmd>\r\n<xid>2</xid>\r\n<get_computer_name />\r\n</cmd>");
  EXPECT_EQ (one.play ({.Channel = 1, .MinLatency = true}), "none3");
  EXPECT_EQ (other.sync ({}, notes.ok (), {}), "4");

  // Up to 12, so that 10, 11 and 12 stand before 9 in text order.
  std::vector<std::string> expected;
  for (int number = 5; number <= 12; ++number) {
    std::string name = std::to_string (number);
    EXPECT_EQ (one.sync ({}, {}, notes.error (name)), AString::from_latin1 (name));
  }
  one.fail_all_commands ();
  const std::string text = " Failing all outstanding commands 0";
  EXPECT_THAT (notes.lines (), ElementsAre ("error" + text, "10" + text, "11" + text, "12" + text, "5" + text,
                                            "6" + text, "7" + text, "8" + text, "9" + text));
}

} // namespace
