// Operations that return values: what they ask the server, and how they read its answers.

#include "exports/snapshots.h"
#include "hpp/scripted.h"

#include <limits>
#include <string>
#include <vector>

namespace {

using namespace orva;
using support::FakeServer;
using Names = std::vector<std::string>;

TEST (Questions, AboutNames) {
  const std::string clef = "\xF0\x9D\x84\x9E";
  const std::string long_name (3000, 'n');
  FakeServer fake;
  fake.on ("download_clipids", [&] (const support::Command &command) {
    std::string text;
    for (const std::string &name : {clef, long_name, std::string ("a &amp; b")})
      text += support::reply_to (command, "<clipid><ClipID>" + name + "</ClipID></clipid>");
    return text + support::reply_to (command, "<ok />");
  });
  fake.answer ("download_directory_names",
               {"<directory_name><DirectoryName>NEWS</DirectoryName></directory_name>", "<ok />"});
  const Connected server (fake);
  EXPECT_EQ (server.clips (), (Names{clef, long_name, "a & b"}));
  EXPECT_EQ (server.directories (), Names{"NEWS"});
}

TEST (Questions, AboutNamesOfAnEmptyServer) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  EXPECT_EQ (server.clips (), Names{});
  EXPECT_EQ (server.directories (), Names{});
}

TEST (Questions, AboutTheServer) {
  const std::string name = std::string (253, 'n') + "\xF0\x9D\x84\x9E"; // the first buffer cuts it
  FakeServer fake;
  fake.answer ("get_computer_name", "<computername><ComputerName>" + name + "</ComputerName></computername>");
  fake.answer ("get_video_standard",
               "<video_standard><VideoStandard>1080_59_94i</VideoStandard><VideoRate>59_94</VideoRate>"
               "<VideoResolution>1080i</VideoResolution></video_standard>");
  fake.answer ("get_disk_usage",
               "<disk_usage><TotalDiskSpace>18446744073709551615</TotalDiskSpace><AvailableDiskSpace>1001"
               "</AvailableDiskSpace><FieldSize>10</FieldSize></disk_usage>");
  const Connected server (fake);
  EXPECT_EQ (server.name (), name);
  const Video video = server.video ();
  EXPECT_EQ (video.standard, Standard::i1080_59_94);
  EXPECT_EQ (video.rate, Rate::hz_59_94);
  EXPECT_EQ (video.resolution, Resolution::i1080);
  EXPECT_TRUE (video.timebase ().drop_frame ());
  const Disk disk = server.disk ();
  EXPECT_EQ (disk.total, std::numeric_limits<std::uint64_t>::max ());
  EXPECT_EQ (disk.available, 1001u);
  EXPECT_EQ (disk.field_size, 10u);
  EXPECT_EQ (server.disk_time ().total, Position (4294967295));
  EXPECT_EQ (server.disk_time ().available, Position (100));
}

TEST (Questions, AboutAProgressiveServer) {
  FakeServer fake;
  fake.answer ("get_video_standard",
               "<video_standard><VideoStandard>1080_50p</VideoStandard><VideoRate>50</VideoRate>"
               "<VideoResolution>1080p</VideoResolution></video_standard>");
  const Connected server (fake);
  const Video video = server.video ();
  EXPECT_FALSE (video.standard_certain ());
  EXPECT_TRUE (video.timebase ().certain ());
  EXPECT_EQ (video.timebase ().frames_per_second (), 25);
}

TEST (Questions, WhetherAClipExists) {
  FakeServer fake;
  fake.on ("clip_exists", [] (const support::Command &command) {
    const std::string name = support::text_of (command.document, "ClipID");
    return support::reply_to (command, "<clipexists><ClipID>" + name + "</ClipID><Exists>" +
                                           (name == "YES" ? "true" : "false") + "</Exists></clipexists>");
  });
  const Connected server (fake);
  EXPECT_TRUE (server.clip ("YES").exists ());
  EXPECT_FALSE (server.clip ("NO").exists ());
}

TEST (Questions, AboutAClip) {
  FakeServer fake;
  fake.answer (
      "get_clip_info",
      clip_info (
          {{"VideoStandard", "625_50i"},
           {"TrackInfoVector", "<TrackInfo><TrackType>audio</TrackType></TrackInfo>"
                               "<TrackInfo><TrackType>video</TrackType></TrackInfo>"},
           {"Playback", "f12"},
           {"Loop", "pingpongto"},
           {"TimecodeSource", "striped"},
           {"StripeTimecode",
            "<Valid>true</Valid><FieldNumber>100</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>"},
           {"ReadOnly", "true"}},
          "<Frame0Timecode><FieldNumber>50</FieldNumber></Frame0Timecode>"
          "<TrimStart>4</TrimStart><TrimEnd>4294967294</TrimEnd><ClipUUID>uuid-1</ClipUUID>"
          "<ParentUUID>uuid-2</ParentUUID><LoadedStamp>18446744073709551615</LoadedStamp>"
          "<UnloadedStamp>2</UnloadedStamp><PlayedStamp>3</PlayedStamp><MetaEditStamp>4</MetaEditStamp>"
          "<ContentEditStamp>5</ContentEditStamp>" +
              metadata_list ({{"desk", "4"}, {"note", std::string (5000, 'x')}, {"", "empty key"}})));
  const Connected server (fake);
  const ClipInfo info = server.clip ("NEWS0123").info ();
  EXPECT_EQ (info.standard, Standard::i625_50);
  EXPECT_EQ (info.tracks, Tracks::audio | Tracks::video);
  EXPECT_EQ (info.title, "The opener");
  EXPECT_EQ (info.creator, "Desk 4");
  EXPECT_EQ (info.project, "Evening");
  EXPECT_EQ (info.playback, Playback::both_fields);
  EXPECT_EQ (info.repeat, Repeat::pingpong_to);
  EXPECT_EQ (info.length, Position (1800));
  EXPECT_EQ (info.loop_in, Position (10));
  EXPECT_EQ (info.loop_out, Position (90));
  EXPECT_EQ (info.trim_start, Position (4));
  EXPECT_EQ (info.trim_end, Position (4294967294));
  EXPECT_TRUE (info.read_only);
  EXPECT_EQ (info.timecode_source, TimecodeSource::striped);
  EXPECT_EQ (info.timecode.start, Position (100));
  EXPECT_EQ (info.timecode.counting, Counting::non_drop_frame);
  EXPECT_EQ (info.recorded_timecode.start, Position (50));
  EXPECT_EQ (info.uuid, "uuid-1");
  EXPECT_EQ (info.parent_uuid, "uuid-2");
  EXPECT_EQ (info.last_loaded, std::numeric_limits<std::uint64_t>::max ());
  EXPECT_EQ (info.last_unloaded, 2u);
  EXPECT_EQ (info.last_played, 3u);
  EXPECT_EQ (info.metadata_last_edited, 4u);
  EXPECT_EQ (info.content_last_edited, 5u);
  ASSERT_GE (info.metadata.size (), 2u);
  EXPECT_EQ (info.metadata[0], std::make_pair (std::string ("desk"), std::string ("4")));
  EXPECT_EQ (info.metadata[1].second, std::string (5000, 'x'));
  EXPECT_EQ (server.clip ("NEWS0123").meta ("desk"), "4");
  EXPECT_EQ (server.clip ("NEWS0123").meta ("other"), std::nullopt);
}

TEST (Questions, AboutAClipThatIsNotThere) {
  FakeServer fake;
  fake.answer_any (::refused ("No such clip"));
  const Connected server (fake);
  EXPECT_EQ (server.nothrow ().clip ("X").info ().failure ().text, "No such clip");
  EXPECT_EQ (server.nothrow ().clip ("X").meta ("k").failure ().text, "No such clip");
  EXPECT_EQ (server.nothrow ()
                 .clip ("X")
                 .edit ({"title", {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}})
                 .failure ()
                 .text,
             "No such clip");
}

std::string change (const std::string &contents) {
  return "<modify_clip_attributes>|<ClipID>NEWS0123</ClipID>|<ClipAttrChange>|" + contents +
         "|</ClipAttrChange>|</modify_clip_attributes>";
}

TEST (Edits, AreMadeInTheirOrder) {
  FakeServer fake;
  fake.answer ("get_clip_info", clip_info ());
  fake.answer_any ("<ok />");
  const Connected server (fake);
  ClipEdit edit;
  edit.title = "T";
  edit.creator = "C";
  edit.project = "P";
  edit.playback = Playback::both_fields;
  edit.repeat = Repeat::pingpong;
  edit.loop_in = 4294967295u;
  edit.loop_out = 0;
  edit.trim_start = 100;
  edit.trim_end = 4294967295u;
  edit.stripe = TimecodeStart{216000, Counting::drop_frame};
  edit.timecode_source = TimecodeSource::recorded;
  server.clip ("NEWS0123").edit (edit);
  const std::vector<std::string> elements = {
      "<get_clip_info>|<ClipID>NEWS0123</ClipID>|</get_clip_info>",
      change ("<Title>T</Title>"),
      change ("<Creator>C</Creator>"),
      change ("<Project>P</Project>"),
      change ("<Playback>f12</Playback>"),
      change ("<Loop>pingpong</Loop>"),
      change ("<LoopIn>4294967295</LoopIn>"),
      change ("<LoopOut>0</LoopOut>"),
      change ("<TrimStart>100</TrimStart>"),
      change ("<TrimEnd>4294967294</TrimEnd>"),
      change ("<TimecodeSource>striped</TimecodeSource>|<StripeTimecode>|<Valid>true</Valid>|"
              "<FieldNumber>216000</FieldNumber>|<DropFrameFlag>df</DropFrameFlag>|</StripeTimecode>"),
      change ("<TimecodeSource>rectc</TimecodeSource>"),
  };
  for (size_t i = 0; i != elements.size (); ++i) {
    const support::Command command = fake.command (i + 1);
    EXPECT_EQ (command.document, document (command.xid, elements[i]));
  }
  EXPECT_EQ (fake.command_count (), elements.size ());
}

TEST (Edits, ReachTheMetadata) {
  FakeServer fake;
  fake.answer ("get_clip_info", clip_info ());
  fake.answer_any ("<ok />");
  const Connected server (fake);
  server.clip ("NEWS0123").set_meta ("desk", "\xC3\xA4");
  server.clip ("NEWS0123").erase_meta ("desk");
  EXPECT_EQ (support::text_of (fake.command (2).document, "Value"), "\xC3\xA4");
  EXPECT_NE (fake.command (4).document.find ("<KeyList>\r\n<Key>desk</Key>\r\n</KeyList>"),
             std::string::npos);
}

TEST (Edits, EndAtTheFirstThatIsRefused) {
  FakeServer fake;
  fake.answer ("get_clip_info", clip_info ());
  fake.on ("modify_clip_attributes", [] (const support::Command &command) {
    const bool creator = command.document.find ("<Creator>") != std::string::npos;
    return support::reply_to (command, creator ? ::refused ("Not yours") : "<ok />");
  });
  const Connected server (fake);
  ClipEdit edit;
  edit.title = "T";
  edit.creator = "C";
  edit.project = "P";
  EXPECT_EQ (server.nothrow ().clip ("NEWS0123").edit (edit).failure ().text, "Not yours");
  EXPECT_EQ (fake.command_count (), 3u);
}

} // namespace
