// What reports change in the sets of changed names. The connection gets them as parsed messages.

#include "api/connection/connection_registry.h"
#include "support/fake_server.h"
#include "xml/xml_parse.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

/// Where a name waits.
enum State { nowhere, added, deleted, changed };

/// A connection that is registered for all changes.
class ClipChanges : public testing::Test {
protected:
  ClipChanges () {
    server_.answer_any ("<ok />");
    connection_->start (server_.address ());
    EXPECT_TRUE (support::wait_until ([this] { return connection_->is_connected (); }));
    EXPECT_EQ (orva_track_clip_changes (number_), 0u);
    EXPECT_EQ (orva_track_directory_changes (number_), 0u);
  }
  ~ClipChanges () override {
    orva_close (number_);
    EXPECT_EQ (server_.command_count (), 2u) << "tracking is registered once";
  }

  static XMLTree message (const std::string &body) {
    return parse_xml_text (AString::from_utf8 ("<report>" + body + "</report>"));
  }
  static XMLTree clip_message (const std::string &event, const std::string &name) {
    return message ("<clip_" + event + "><ClipID>" + name + "</ClipID></clip_" + event + ">");
  }
  void report (const std::string &body) { connection_->dispatch_message (message (body)); }
  void clip (const std::string &event, const std::string &name) {
    connection_->dispatch_message (clip_message (event, name));
  }
  void directory (const std::string &event, const std::string &name) {
    report ("<directory_" + event + "><DirectoryName>" + name + "</DirectoryName></directory_" + event + ">");
  }

  std::string take (uint32_t (*function) (uint32_t, OrvaStringBuffer)) {
    orva_char units[32];
    EXPECT_EQ (function (number_, {units, 32}), 0u);
    std::string ascii;
    for (const orva_char *unit = units; *unit != 0; ++unit)
      ascii += char (*unit);
    return ascii;
  }
  std::string take_added () { return take (orva_track_change_added_clip); }
  std::string take_deleted () { return take (orva_track_change_deleted_clip); }
  std::string take_changed () { return take (orva_track_change_changed_clip); }
  std::string take_added_directory () { return take (orva_track_change_added_directory); }
  std::string take_deleted_directory () { return take (orva_track_change_deleted_directory); }

  support::FakeServer server_;
  const Connection connection_ = Connection::create ();
  const uint32_t number_ = connections ().open (connection_);
};

TEST_F (ClipChanges, FollowAModelThroughAllSequencesOfUpToFiveEvents) {
  const char events[] = {'+', '~', '-', 'a', 'd', 'c'}; // three reports, three takings
  std::vector<std::string> sequences = {""};
  for (size_t i = 0; i != sequences.size (); ++i)
    if (sequences[i].size () != 5)
      for (const char event : events)
        sequences.push_back (sequences[i] + event);
  ASSERT_EQ (sequences.size (), 1u + 6 + 36 + 216 + 1296 + 7776);

  const XMLTree created_message = clip_message ("created", "NAME");
  const XMLTree changed_message = clip_message ("changed", "NAME");
  const XMLTree deleted_message = clip_message ("deleted", "NAME");
  const auto expect_taken = [this] (State &model, State wanted, const std::string &taken) {
    EXPECT_EQ (taken, model == wanted ? "NAME" : "");
    if (model == wanted)
      model = nowhere;
  };
  for (const std::string &sequence : sequences) {
    SCOPED_TRACE (sequence);
    State model = nowhere;
    for (const char event : sequence + "adc")
      switch (event) {
      case '+':
        connection_->dispatch_message (created_message);
        model = added;
        break;
      case '~':
        connection_->dispatch_message (changed_message);
        model = model == added ? added : changed;
        break;
      case '-':
        connection_->dispatch_message (deleted_message);
        model = deleted;
        break;
      case 'a':
        expect_taken (model, added, take_added ());
        break;
      case 'd':
        expect_taken (model, deleted, take_deleted ());
        break;
      default:
        expect_taken (model, changed, take_changed ());
      }
    ASSERT_FALSE (HasFailure ());
  }
}

TEST_F (ClipChanges, OfDirectoriesFollowAModelToo) {
  const char events[] = {'+', '-', 'a', 'd'};
  std::vector<std::string> sequences = {""};
  for (size_t i = 0; i != sequences.size (); ++i)
    if (sequences[i].size () != 5)
      for (const char event : events)
        sequences.push_back (sequences[i] + event);
  ASSERT_EQ (sequences.size (), 1u + 4 + 16 + 64 + 256 + 1024);

  for (const std::string &sequence : sequences) {
    SCOPED_TRACE (sequence);
    State model = nowhere;
    for (const char event : sequence + "ad") {
      if (event == '+' || event == '-') {
        directory (event == '+' ? "created" : "deleted", "NAME");
        model = event == '+' ? added : deleted;
        continue;
      }
      const State wanted = event == 'a' ? added : deleted;
      EXPECT_EQ (event == 'a' ? take_added_directory () : take_deleted_directory (),
                 model == wanted ? "NAME" : "");
      model = model == wanted ? nowhere : model;
    }
    ASSERT_FALSE (HasFailure ());
  }
}

TEST_F (ClipChanges, ComeInTheOrderOfTheirCharacters) {
  for (const char *name : {"b", "B", "a/x", "AA", "A"})
    clip ("changed", name);
  for (const char *name : {"A", "AA", "B", "a/x", "b", ""})
    EXPECT_EQ (take_changed (), name);
}

TEST_F (ClipChanges, WithoutANameAreIgnored) {
  for (const char *event : {"created", "changed", "deleted"})
    report ("<clip_" + std::string (event) + "><ClipID /></clip_" + event + ">");
  for (const char *event : {"created", "deleted"})
    report ("<directory_" + std::string (event) + "><DirectoryName /></directory_" + event + ">");
  clip ("created", "A");
  directory ("deleted", "D");
  EXPECT_EQ (take_added (), "A") << "an empty name would come first";
  EXPECT_EQ (take_deleted_directory (), "D");
  EXPECT_EQ (take_deleted (), "");
  EXPECT_EQ (take_changed (), "");
  EXPECT_EQ (take_added_directory (), "");
}

TEST_F (ClipChanges, OfOneNameDoNotTouchOthersOrTheOtherKind) {
  clip ("created", "A");
  directory ("created", "A");
  clip ("deleted", "B");
  directory ("deleted", "A");
  EXPECT_EQ (take_added (), "A");
  EXPECT_EQ (take_deleted (), "B");
  EXPECT_EQ (take_added_directory (), "");
  EXPECT_EQ (take_deleted_directory (), "A");
}

} // namespace
