#include "exports/session.h"

#include <gtest/gtest.h>

namespace {

using support::FakeServer;

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const std::basic_string<orva_char> other_text = wide ("NEWS/LATE");
const orva_char *const clip = clip_text.c_str ();
const orva_char *const other = other_text.c_str ();

std::string existence (const std::string &exists) {
  return "<clipexists><ClipID>NEWS0123</ClipID><Exists>" + exists + "</Exists></clipexists>";
}

const std::string refusal = refused ("Clip is locked");

TEST (Clips, AreRenamedDeletedAndCreated) {
  expect_wire ({
      SENDS (orva_rename_clip (c, clip, other), "rename_clip FromID=NEWS0123 ToID=NEWS/LATE"),
      SENDS (orva_delete_clip (c, clip), "delete_clip ClipID=NEWS0123"),
      // everything
      SENDS (orva_create_clip1 (c, clip, 0xFFFFFFFF), "create_clip ClipID=NEWS0123 TrackSet{TrackType=video "
                                                      "TrackType=timecode TrackType=key TrackType=audio}"),
      SENDS (orva_create_clip1 (c, clip, 8), "create_clip ClipID=NEWS0123 TrackSet"), // no track
      SENDS (orva_create_clip2 (c, clip, 4, 0xFFFFFFFF),
             "create_clip ClipID=NEWS0123 TrackSet{TrackType=audio} ClipLength=4294967295"),
      SENDS (orva_create_clip3 (c, 1, clip, 3, 0),
             "create_clip ClipID=NEWS0123 TrackSet{TrackType=video TrackType=timecode TrackType=key} "
             "ClipLength=0 Channel=B"),
      SENDS (orva_create_clip3 (c, 8, clip, 2, 50), // a channel that is not there
             "create_clip ClipID=NEWS0123 TrackSet{TrackType=key} ClipLength=50 Channel=A"),
      SENDS (orva_create_child_clip1 (c, other, clip),
             "create_child_clip ClipID=NEWS/LATE ParentClipID=NEWS0123"),
      SENDS (orva_create_child_clip2 (c, other, clip, 0x1FE),
             "create_child_clip ClipID=NEWS/LATE ParentClipID=NEWS0123 Angle=254"),
      SENDS (orva_create_directory (c, other), "create_directory DirectoryName=NEWS/LATE"),
  });
}

TEST (Clips, AreAskedFor) {
  FakeServer server;
  server.answer ("clip_exists", existence ("true"));
  const Session session (server);
  uint32_t exists = 77;
  EXPECT_EQ (orva_clip_exists (session, clip, &exists), ORVA_OK);
  EXPECT_EQ (exists, 1u);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document,
             document (command.xid, "<clip_exists>|<ClipID>NEWS0123</ClipID>|</clip_exists>"));
  server.answer ("clip_exists", existence ("false"));
  EXPECT_EQ (orva_clip_exists (session, clip, &exists), ORVA_OK);
  EXPECT_EQ (exists, 0u);
}

TEST (Clips, AreAskedForWithoutAPlaceForTheAnswer) {
  FakeServer server;
  server.answer ("clip_exists", existence ("true"));
  const Session session (server);
  EXPECT_EQ (orva_clip_exists (session, clip, nullptr), ORVA_OK);
  EXPECT_EQ (server.command_count (), 1u);
  server.answer ("clip_exists", refusal);
  EXPECT_EQ (orva_clip_exists (session, clip, nullptr), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Clip is locked");
}

TEST (Clips, ThatCannotBeAskedForAreSaidNotToExist) {
  FakeServer server;
  server.answer ("clip_exists", refusal);
  const Session session (server);
  uint32_t exists = 77;
  EXPECT_EQ (orva_clip_exists (session, clip, &exists), ORVA_ERROR);
  EXPECT_EQ (exists, 0u);
  exists = 77;
  EXPECT_EQ (orva_clip_exists (0, clip, &exists), ORVA_INVALID_HANDLE);
  EXPECT_EQ (exists, 77u);
}

TEST (Clips, AreAskedForOnAnAsynchronousConnectionToo) {
  FakeServer server;
  server.answer ("clip_exists", existence ("true"));
  const Session session (server);
  orva_synchronous (session, 1);
  uint32_t exists = 77;
  EXPECT_EQ (orva_clip_exists (session, clip, &exists), ORVA_OK);
  EXPECT_EQ (exists, 1u);
}

TEST (Clips, CannotBeProtected) {
  FakeServer server;
  const Session session (server);
  for (const auto call : {orva_set_readonly, orva_unset_readonly}) {
    EXPECT_EQ (call (session, clip), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Not implemented");
    EXPECT_EQ (call (0, clip), ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
  }
  EXPECT_EQ (server.command_count (), 0u);
}

TEST (Clips, AreRefusedWithTheServersText) {
  FakeServer server;
  server.answer_any (refusal);
  const Session session (server);
  EXPECT_EQ (orva_delete_clip (session, clip), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Clip is locked");
  EXPECT_EQ (orva_rename_clip (session, clip, other), ORVA_ERROR);
  EXPECT_EQ (orva_create_clip3 (session, 0, clip, 1, 1), ORVA_ERROR);
  EXPECT_EQ (orva_create_child_clip2 (session, clip, other, 1), ORVA_ERROR);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_delete_clip (session, clip), ORVA_OK);
}

TEST (Clips, OfAWrongNumberGiveInvalidHandle) {
  EXPECT_EQ (orva_rename_clip (0, clip, other), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_delete_clip (0, clip), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_create_clip1 (0, clip, 1), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_create_child_clip1 (0, clip, other), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_create_directory (0, clip), ORVA_INVALID_HANDLE);
}

} // namespace
