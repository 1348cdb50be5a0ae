#include "exports/session.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using support::FakeServer;
using Names = std::vector<std::string>;

const std::string refusal = refused ("Disk is gone");

/// Answers with these names, in UTF-8, and the end of the list.
void hold_clips (FakeServer &server, const Names &names) {
  server.on ("download_clipids", [names] (const support::Command &command) {
    std::string text;
    for (const std::string &name : names)
      text += support::reply_to (command, "<clipid><ClipID>" + name + "</ClipID></clipid>");
    return text + support::reply_to (command, "<ok />");
  });
}

using Open = uint32_t (*) (uint32_t connection, uint32_t *handle);
using Get = uint32_t (*) (uint32_t handle, OrvaStringBuffer name);

uint32_t opened (Open open, uint32_t connection) {
  uint32_t handle = 0;
  EXPECT_EQ (open (connection, &handle), ORVA_OK) << last_error ();
  EXPECT_NE (handle, 0u);
  return handle;
}

std::string name_of (Get get, uint32_t handle) {
  return filled ([=] (OrvaStringBuffer name) {
    EXPECT_EQ (get (handle, name), ORVA_OK);
    EXPECT_EQ (last_error (), "OK");
  });
}

std::string next_clip (uint32_t handle) {
  return name_of (orva_get_clip_name, handle);
}

TEST (ClipLists, AreReadNameByName) {
  FakeServer server;
  hold_clips (server, {"NEWS0123", "a &amp; b", "NEWS0123"});
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, "<download_clipids />"));
  for (const char *name : {"NEWS0123", "a & b", "NEWS0123", "", ""})
    EXPECT_EQ (next_clip (handle), name);
  orva_close_clip_list (handle);
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (ClipLists, OfAnEmptyServerAreValidAndEmpty) {
  FakeServer server;
  hold_clips (server, {});
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  EXPECT_EQ (next_clip (handle), "");
  EXPECT_EQ (next_clip (handle), "");
  orva_close_clip_list (handle);
}

TEST (ClipLists, AreIndependent) {
  FakeServer server;
  hold_clips (server, {"A", "B"});
  const Session session (server);
  const uint32_t first = opened (orva_open_clip_list, session);
  const uint32_t second = opened (orva_open_clip_list, session);
  EXPECT_NE (first, second);
  EXPECT_EQ (next_clip (first), "A");
  EXPECT_EQ (next_clip (first), "B");
  EXPECT_EQ (next_clip (second), "A");
  orva_close_clip_list (first);
  EXPECT_EQ (next_clip (second), "B");
  orva_close_clip_list (second);
}

TEST (ClipLists, OutliveTheirConnection) {
  FakeServer server;
  hold_clips (server, {"A", "B"});
  uint32_t handle = 0;
  {
    const Session session (server);
    handle = opened (orva_open_clip_list, session);
  }
  EXPECT_EQ (next_clip (handle), "A");
  orva_close_clip_list (handle);
}

TEST (ClipLists, ThatAreNotOpenGiveAnEmptyName) {
  FakeServer server;
  hold_clips (server, {"A"});
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  orva_close_clip_list (handle);
  orva_close_clip_list (handle);
  orva_close_clip_list (0);
  orva_close_directory_list (handle);
  for (const Get get : {orva_get_clip_name, orva_get_directory_name, orva_get_metakey}) {
    uint32_t code = 77;
    EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { code = get (handle, name); }), "");
    EXPECT_EQ (code, ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
  }
}

TEST (ClipLists, RecordNothingWhenClosed) {
  orva_delete_clip (0, wide ("A").c_str ());
  orva_close_clip_list (0);
  orva_close_directory_list (0);
  EXPECT_EQ (last_error (), "Invalid handle");
}

TEST (ClipLists, NeedNoPlaceForTheHandle) {
  FakeServer server;
  hold_clips (server, {"A"});
  server.answer ("download_directory_names", "<ok />");
  const Session session (server);
  EXPECT_EQ (orva_open_clip_list (session, nullptr), ORVA_OK);
  EXPECT_EQ (orva_open_directory_list (session, nullptr), ORVA_OK);
  EXPECT_EQ (server.command_count (), 2u);
  uint32_t next = 77;
  EXPECT_EQ (orva_open_clip_list (session, &next), ORVA_OK);
  EXPECT_EQ (next, session + 1) << "no number was used for the lists that nobody wanted";
  orva_close_clip_list (next);
}

TEST (ClipLists, ThatFailMakeNoHandle) {
  FakeServer server;
  server.on_any ([] (const support::Command &command) {
    return support::reply_to (command, "<clipid><ClipID>A</ClipID></clipid>") +
           support::reply_to (command, refusal);
  });
  const Session session (server);
  uint32_t handle = 77;
  EXPECT_EQ (orva_open_clip_list (session, &handle), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Disk is gone");
  server.on_any ([] (const support::Command &command) { return support::reply_to (command, refusal); });
  EXPECT_EQ (orva_open_directory_list (session, &handle), ORVA_ERROR);
  EXPECT_EQ (orva_open_clip_list (0, &handle), ORVA_INVALID_HANDLE);
  EXPECT_EQ (handle, 77u);
}

TEST (ClipLists, ThatAreCutOffByALossMakeNoHandle) {
  FakeServer server;
  server.on ("download_clipids", [&server] (const support::Command &command) {
    server.send (support::reply_to (command, "<clipid><ClipID>A</ClipID></clipid>"));
    server.drop ();
    return std::string ();
  });
  const Session session (server);
  uint32_t handle = 77;
  EXPECT_EQ (orva_open_clip_list (session, &handle), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_EQ (handle, 77u);
  hold_clips (server, {"B"});
  orva_wait_until_connected (session);
  const uint32_t again = opened (orva_open_clip_list, session);
  EXPECT_EQ (next_clip (again), "B") << "nothing is left of the first attempt";
  orva_close_clip_list (again);
}

TEST (ClipLists, WaitOnAnAsynchronousConnectionToo) {
  FakeServer server;
  hold_clips (server, {"A"});
  const Session session (server);
  orva_synchronous (session, 1);
  const uint32_t handle = opened (orva_open_clip_list, session);
  EXPECT_EQ (next_clip (handle), "A");
  orva_close_clip_list (handle);
}

TEST (ClipLists, HoldThousandsOfNames) {
  FakeServer server;
  Names names;
  for (int i = 0; i != 3000; ++i)
    names.push_back ("NEWS" + std::to_string (i));
  hold_clips (server, names);
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  for (const std::string &name : names)
    ASSERT_EQ (next_clip (handle), name);
  EXPECT_EQ (next_clip (handle), "");
  orva_close_clip_list (handle);
}

TEST (ClipLists, HoldLongNames) {
  FakeServer server;
  const std::string name (4000, 'x');
  hold_clips (server, {name, name, name});
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  const auto take = [=] (OrvaStringBuffer text) { EXPECT_EQ (orva_get_clip_name (handle, text), ORVA_OK); };
  EXPECT_EQ (filled (take, 4001), name);
  EXPECT_EQ (filled (take, 4000), name.substr (1)) << "one unit less";
  EXPECT_EQ (filled (take, 1), "");
  EXPECT_EQ (filled (take, 4001), "") << "a name that was cut is gone all the same";
  orva_close_clip_list (handle);
}

TEST (ClipLists, DoNotCutNamesThroughACharacter) {
  FakeServer server;
  const std::string name = "a\xF0\x9D\x84\x9E\xC3\xA9"; // a clef between two letters
  hold_clips (server, Names (6, name));
  const Session session (server);
  const uint32_t handle = opened (orva_open_clip_list, session);
  const std::vector<std::vector<orva_char>> expected = {
      {'#', '#', '#', '#', '#'}, {0, '#', '#', '#', '#'},       {'a', 0, '#', '#', '#'},
      {'a', 0, '#', '#', '#'},   {'a', 0xD834, 0xDD1E, 0, '#'}, {'a', 0xD834, 0xDD1E, 0xE9, 0},
  };
  for (uint32_t capacity = 0; capacity != expected.size (); ++capacity) {
    SCOPED_TRACE (capacity);
    std::vector<orva_char> units (5, '#');
    EXPECT_EQ (orva_get_clip_name (handle, {units.data (), capacity}), ORVA_OK);
    EXPECT_EQ (units, expected[capacity]);
  }
  orva_close_clip_list (handle);
}

TEST (DirectoryLists, AreReadAsListsOfClipsAre) {
  FakeServer server;
  server.answer ("download_directory_names",
                 {"<directory_name><DirectoryName>NEWS</DirectoryName></directory_name>",
                  "<directory_name><DirectoryName>SPORT</DirectoryName></directory_name>", "<ok />"});
  hold_clips (server, {"A"});
  const Session session (server);
  const uint32_t handle = opened (orva_open_directory_list, session);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, "<download_directory_names />"));
  EXPECT_EQ (name_of (orva_get_directory_name, handle), "NEWS");
  EXPECT_EQ (next_clip (handle), "SPORT") << "the families share their functions";
  EXPECT_EQ (name_of (orva_get_directory_name, handle), "");
  const uint32_t clips = opened (orva_open_clip_list, session);
  EXPECT_EQ (name_of (orva_get_directory_name, clips), "A");
  orva_close_directory_list (clips);
  orva_close_clip_list (handle);
  EXPECT_EQ (orva_get_clip_name (handle, {nullptr, 0}), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_get_clip_name (clips, {nullptr, 0}), ORVA_INVALID_HANDLE);
}

// --- Changes

std::string clip_event (const std::string &event, const std::string &name) {
  return "<clip_" + event + "><ClipID>" + name + "</ClipID></clip_" + event + ">";
}

std::string directory_event (const std::string &event, const std::string &name) {
  return "<directory_" + event + "><DirectoryName>" + name + "</DirectoryName></directory_" + event + ">";
}

/// Sends reports and waits until the library has dealt with them.
void report (FakeServer &server, uint32_t connection, const Names &bodies) {
  for (const std::string &body : bodies)
    server.report (body);
  EXPECT_EQ (orva_cmd_stop1 (connection, 0), ORVA_OK);
}

const std::string clip_registration = "<report_register>|<ReportType>clip_change</ReportType>|"
                                      "</report_register>";
const std::string directory_registration = "<report_register>|<ReportType>directory_change</ReportType>|"
                                           "</report_register>";

TEST (Changes, OfClipsAreRegisteredOnce) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  EXPECT_EQ (name_of (orva_track_change_added_clip, session), "");
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, clip_registration));
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (Changes, OfDirectoriesAreRegisteredOnce) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_OK);
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_OK);
  EXPECT_EQ (name_of (orva_track_change_deleted_directory, session), "");
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, directory_registration));
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (Changes, AreRegisteredByTheFirstThatIsTaken) {
  struct Row {
    Get take;
    std::string registration;
  };
  const Row rows[] = {
      {orva_track_change_added_clip, clip_registration},
      {orva_track_change_deleted_clip, clip_registration},
      {orva_track_change_changed_clip, clip_registration},
      {orva_track_change_added_directory, directory_registration},
      {orva_track_change_deleted_directory, directory_registration},
  };
  for (const Row &row : rows) {
    FakeServer server;
    server.answer_any ("<ok />");
    const Session session (server);
    orva_synchronous (session, 1);
    EXPECT_EQ (name_of (row.take, session), "");
    const support::Command command = server.command (1);
    EXPECT_EQ (command.document, document (command.xid, row.registration));
    server.silent (true);
    EXPECT_EQ (name_of (row.take, session), "") << "without any traffic";
  }
}

TEST (Changes, OfClipsAreTakenOneByOne) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  report (server, session,
          {clip_event ("created", "B"), clip_event ("created", "A"), clip_event ("changed", "B"),
           clip_event ("changed", "C"), clip_event ("deleted", "D"), clip_event ("created", "E"),
           clip_event ("changed", "E"), clip_event ("deleted", "E"), clip_event ("deleted", "F"),
           clip_event ("created", "F")});
  for (const char *name : {"A", "B", "F", "", ""})
    EXPECT_EQ (name_of (orva_track_change_added_clip, session), name);
  for (const char *name : {"D", "E", "", ""})
    EXPECT_EQ (name_of (orva_track_change_deleted_clip, session), name);
  for (const char *name : {"C", "", ""})
    EXPECT_EQ (name_of (orva_track_change_changed_clip, session), name);
  report (server, session, {clip_event ("changed", "A")});
  EXPECT_EQ (name_of (orva_track_change_changed_clip, session), "A") << "it was taken as added";
  uint32_t kind = 77, channel = 77;
  EXPECT_EQ (orva_get_notification (session, 0, &kind, &channel), ORVA_OK);
  EXPECT_EQ (kind, uint32_t{ORVA_NOTICE_NONE});
}

TEST (Changes, OfDirectoriesAreTakenOneByOne) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_OK);
  report (server, session,
          {directory_event ("created", "B"), directory_event ("created", "A"),
           directory_event ("deleted", "A"), directory_event ("deleted", "C"),
           directory_event ("created", "C")});
  for (const char *name : {"B", "C", ""})
    EXPECT_EQ (name_of (orva_track_change_added_directory, session), name);
  for (const char *name : {"A", ""})
    EXPECT_EQ (name_of (orva_track_change_deleted_directory, session), name);
}

TEST (Changes, CannotBeTakenUntilTheRegistrationHasWorked) {
  FakeServer server;
  server.answer_any ("<ok />");
  server.answer ("report_register", refusal);
  const Session session (server);
  report (server, session, {clip_event ("created", "A"), directory_event ("created", "D")});
  for (int attempt = 0; attempt != 2; ++attempt) {
    orva_char unit = '#';
    EXPECT_EQ (orva_track_clip_changes (session), ORVA_ERROR);
    EXPECT_EQ (orva_track_change_added_clip (session, {&unit, 1}), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Disk is gone");
    EXPECT_EQ (orva_track_directory_changes (session), ORVA_ERROR);
    EXPECT_EQ (orva_track_change_added_directory (session, {&unit, 1}), ORVA_ERROR);
    EXPECT_EQ (unit, orva_char ('#'));
  }
  server.answer ("report_register", "<ok />");
  EXPECT_EQ (name_of (orva_track_change_added_clip, session), "A") << "nothing was lost";
  EXPECT_EQ (name_of (orva_track_change_added_directory, session), "D");
}

TEST (Changes, MayBeTakenWhileTheServerIsAwayOnceRegistered) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  report (server, session, {clip_event ("created", "A")});
  server.refuse ();
  server.drop_all ();
  ASSERT_TRUE (support::wait_until ([&] { return orva_connected (session) == 0; }));
  EXPECT_EQ (name_of (orva_track_change_added_clip, session), "A");
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
}

TEST (Changes, AreRegisteredAgainOnEachConnection) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_OK);
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  server.forget ();
  server.drop ();
  ASSERT_TRUE (server.wait_for_commands (2));
  EXPECT_EQ (server.command (1).document, document (server.command (1).xid, clip_registration));
  EXPECT_EQ (server.command (2).document, document (server.command (2).xid, directory_registration));
  orva_wait_until_connected (session);
  report (server, session, {clip_event ("deleted", "A")});
  EXPECT_EQ (name_of (orva_track_change_deleted_clip, session), "A");
}

TEST (Changes, OfAWrongNumberGiveInvalidHandle) {
  orva_char unit = '#';
  EXPECT_EQ (orva_track_clip_changes (0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_track_directory_changes (0), ORVA_INVALID_HANDLE);
  for (const Get take :
       {orva_track_change_added_clip, orva_track_change_deleted_clip, orva_track_change_changed_clip,
        orva_track_change_added_directory, orva_track_change_deleted_directory})
    EXPECT_EQ (take (0, {&unit, 1}), ORVA_INVALID_HANDLE);
  EXPECT_EQ (unit, orva_char ('#'));
}

} // namespace
