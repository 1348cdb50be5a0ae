// What reports change in the state of channels. The connection gets them as parsed messages.

#include "api/connection/connection_registry.h"
#include "xml/xml_parse.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Pair = std::pair<uint32_t, uint32_t>;

/// A connection object without a server, and access to its state.
class ChannelCacheTest : public testing::Test {
protected:
  void report (const std::string &body) {
    const XMLTree message = parse_xml_text (AString::from_utf8 ("<report>" + body + "</report>"));
    ASSERT_FALSE (message.is_null ()) << body;
    connection_->dispatch_message (message);
  }
  void listplay (const std::string &name, const std::string &tags = "") {
    report ("<channel_listplay_" + name + "><Channel>B</Channel>" + tags + "</channel_listplay_" + name +
            ">");
  }
  void item (const std::string &name, unsigned index, const std::string &clip) {
    listplay ("item_" + name, "<ListIndex>" + std::to_string (index) +
                                  "</ListIndex><ListElement><ContentID><ClipID>" + clip +
                                  "</ClipID></ContentID></ListElement>");
  }
  void air (const std::string &which, const std::string &index) {
    listplay ("air_" + which, "<ListPlaybackIndex>" +
                                  (index.empty () ? "" : "<ListIndex>" + index + "</ListIndex>") +
                                  "</ListPlaybackIndex>");
  }

  ChannelCache &cache (uint32_t channel = 1) { return connection_->channels[channel]; }
  ListPlayState &list () { return cache ().listplay.value; }

  /// The clips of the list, "-" for a place without an element.
  std::string clips () {
    std::string text;
    for (const AOption<QUILL3::ListElement> &entry : list ().items)
      text += (text.empty () ? "" : " ") +
              (entry.present ? entry.value.ContentID.ClipID.value.to_std_string () : std::string ("-"));
    return text;
  }
  /// The positions now, next and lock, "-" for none.
  std::string positions () {
    std::string text;
    for (const ListPlayState::Position &position : {list ().air_now, list ().air_next, list ().air_lock})
      text += position.present ? std::to_string (position.value) + " " : "- ";
    return text;
  }
  std::vector<Pair> notices () {
    std::vector<Pair> all;
    for (Pair pair (1, 0); pair.first != 0;) {
      connection_->channels.notices ().take (0, &pair.first, &pair.second);
      if (pair.first != 0)
        all.push_back (pair);
    }
    return all;
  }

  ARef<OrvaConnObject> connection_ = ARef<OrvaConnObject>::create ();
};

TEST_F (ChannelCacheTest, StartsEmpty) {
  cache ().each_item ([] (auto &item) {
    EXPECT_FALSE (item.registered);
    EXPECT_FALSE (item.valid);
  });
  EXPECT_EQ (cache ().status.value, 0u);
  EXPECT_TRUE (cache ().clipid.value.is_empty ());
  EXPECT_EQ (cache ().speed.value.load ().raw, 0);
  EXPECT_EQ (cache ().position.value, 0u);
  EXPECT_EQ (cache ().info.value, QUILL3::ChannelInformation ());
  EXPECT_FALSE (list ().is_loaded ());
}

TEST_F (ChannelCacheTest, KeepsTheLastValueOfEachKind) {
  report ("<channel_status><Channel>B</Channel><ChannelStatus>play</ChannelStatus><ClipID>x</ClipID>"
          "</channel_status>");
  report ("<channel_clipid><Channel>B</Channel><ClipID>NEWS</ClipID></channel_clipid>");
  report ("<channel_speed><Channel>B</Channel><Speed>-1.5X</Speed></channel_speed>");
  report ("<channel_timecode><Channel>B</Channel><ClipPosition>42</ClipPosition>"
          "<DisplayTimecode><Valid>true</Valid><FieldNumber>7</FieldNumber></DisplayTimecode>"
          "<InputTimecode><Valid>false</Valid></InputTimecode></channel_timecode>");
  report ("<channel_info><Channel>B</Channel><ChannelInformation><ClipID>NEWS</ClipID>"
          "<ClipLength>100</ClipLength></ChannelInformation></channel_info>");
  EXPECT_EQ (cache ().status.value, 4u);
  EXPECT_TRUE (cache ().clipid.value == "NEWS");
  EXPECT_EQ (cache ().speed.value.load ().raw, -98304);
  EXPECT_EQ (cache ().position.value, 42u);
  EXPECT_EQ (cache ().info.value.ClipLength.value_or (0), 100u);
  EXPECT_TRUE (cache ().status.valid);
  EXPECT_TRUE (cache ().clipid.valid);
  EXPECT_TRUE (cache ().speed.valid);
  EXPECT_TRUE (cache ().position.valid);
  EXPECT_TRUE (cache ().info.valid);
  EXPECT_FALSE (cache ().listplay.valid);
  EXPECT_FALSE (cache (0).status.valid);
}

TEST_F (ChannelCacheTest, RaisesNoticesInOrder) {
  report ("<channel_status><Channel>B</Channel><ChannelStatus>play</ChannelStatus></channel_status>");
  report ("<channel_clipid><Channel>C</Channel><ClipID>NEWS</ClipID></channel_clipid>");
  report ("<channel_speed><Channel>B</Channel><Speed>1X</Speed></channel_speed>");
  report ("<channel_timecode><Channel>H</Channel><ClipPosition>42</ClipPosition>"
          "<DisplayTimecode><Valid>false</Valid></DisplayTimecode>"
          "<InputTimecode><Valid>false</Valid></InputTimecode></channel_timecode>");
  report ("<channel_info><Channel>A</Channel><ChannelInformation><ClipID />"
          "</ChannelInformation></channel_info>");
  EXPECT_EQ (notices (),
             (std::vector<Pair>{{5, 1}, {1, 2}, {7, 1}, {3, 7}, {2, 0}, {4, 0}, {6, 0}, {8, 0}, {9, 0}}));
}

TEST_F (ChannelCacheTest, ABurstIsOneNotice) {
  for (int i = 0; i != 10; ++i)
    report ("<channel_speed><Channel>B</Channel><Speed>" + std::to_string (i) + "X</Speed></channel_speed>");
  report ("<channel_speed><Channel>C</Channel><Speed>1X</Speed></channel_speed>");
  EXPECT_EQ (notices (), (std::vector<Pair>{{7, 1}, {7, 2}}));
  EXPECT_EQ (cache ().speed.value.load ().raw, 9 * 65536);
}

TEST_F (ChannelCacheTest, ChannelsBeyondTheEighthAreIgnored) {
  for (const char *channel : {"I", "J", "K", "L"}) {
    const std::string tag = std::string ("<Channel>") + channel + "</Channel>";
    report ("<channel_status>" + tag + "<ChannelStatus>play</ChannelStatus></channel_status>");
    report ("<channel_clipid>" + tag + "<ClipID>x</ClipID></channel_clipid>");
    report ("<channel_speed>" + tag + "<Speed>1X</Speed></channel_speed>");
    report ("<channel_info>" + tag + "<ChannelInformation><ClipID /></ChannelInformation></channel_info>");
    report ("<channel_timecode>" + tag +
            "<ClipPosition>1</ClipPosition><DisplayTimecode><Valid>true</Valid></DisplayTimecode>"
            "<InputTimecode><Valid>true</Valid></InputTimecode></channel_timecode>");
    const auto list_report = [&] (const std::string &name, const std::string &rest = "") {
      report ("<channel_listplay_" + name + ">" + tag + rest + "</channel_listplay_" + name + ">");
    };
    const std::string element = "<ListElement><ContentID><ClipID>x</ClipID></ContentID></ListElement>";
    list_report ("list", "<ListID>l</ListID><ListPlayMode>pgm_pvw</ListPlayMode>");
    list_report ("item_exists", "<ListIndex>0</ListIndex>" + element);
    list_report ("item_insert", "<ListIndex>0</ListIndex>" + element);
    list_report ("air_now", "<ListPlaybackIndex><ListIndex>0</ListIndex></ListPlaybackIndex>");
    list_report ("air_next", "<ListPlaybackIndex><ListIndex>0</ListIndex></ListPlaybackIndex>");
    list_report ("air_lock", "<ListPlaybackIndex><ListIndex>0</ListIndex></ListPlaybackIndex>");
    list_report ("loop", "<Loop>loop</Loop>");
    list_report ("item_remove", "<ListIndex>0</ListIndex>");
    list_report ("clear_all");
    list_report ("unloaded");
  }
  EXPECT_TRUE (notices ().empty ());
  for (uint32_t channel = 0; channel != ChannelStates::count; ++channel)
    cache (channel).each_item ([] (auto &item) { EXPECT_FALSE (item.valid); });
}

// Each report of a list leaves its mark when its channel exists, so that the silence above means something.
TEST_F (ChannelCacheTest, EachReportOfAListIsHeard) {
  const char *const index = "<ListPlaybackIndex><ListIndex>0</ListIndex></ListPlaybackIndex>";
  const std::pair<const char *, std::string> rows[] = {
      {"list", "<ListID>l</ListID><ListPlayMode>pgm_pvw</ListPlayMode>"},
      {"item_exists", "<ListIndex>0</ListIndex><ListElement><ContentID /></ListElement>"},
      {"item_insert", "<ListIndex>0</ListIndex><ListElement><ContentID /></ListElement>"},
      {"air_now", index},
      {"air_next", index},
      {"air_lock", index},
      {"loop", "<Loop>loop</Loop>"},
      {"item_remove", "<ListIndex>0</ListIndex>"},
      {"clear_all", ""},
      {"unloaded", ""},
  };
  for (const auto &[name, tags] : rows) {
    cache ().info.valid.store (false);
    listplay (name, tags);
    EXPECT_TRUE (cache ().info.valid) << name;
    EXPECT_FALSE (cache ().listplay.valid) << name;
  }
  EXPECT_TRUE (notices ().empty ());
}

TEST_F (ChannelCacheTest, UnusableReportsChangeNothing) {
  report ("<channel_status><Channel>B</Channel><ChannelStatus>flying</ChannelStatus></channel_status>");
  report ("<channel_status><Channel>Q</Channel><ChannelStatus>play</ChannelStatus></channel_status>");
  report ("<channel_speed><Channel>B</Channel></channel_speed>");
  EXPECT_TRUE (notices ().empty ());
  EXPECT_FALSE (cache ().status.valid);
  EXPECT_FALSE (cache ().speed.valid);
}

// Their values are looked at all the same: what cannot be read is noted.
TEST_F (ChannelCacheTest, ReportsThatNobodyWantsAreReadAndDropped) {
  const struct {
    const char *good, *bad, *failure;
  } rows[] = {
      {"<temperature><Temperature10>415</Temperature10></temperature>",
       "<temperature><Temperature10>warm</Temperature10></temperature>",
       "Tag Temperature10 contains invalid value 'warm'"},
      {"<channel_aux_audio_timecode><Channel>B</Channel><ClipPosition>7</ClipPosition>"
       "</channel_aux_audio_timecode>",
       "<channel_aux_audio_timecode><Channel>M</Channel><ClipPosition>7</ClipPosition>"
       "</channel_aux_audio_timecode>",
       "Tag channel_aux_audio_timecode contains invalid value 'Channel'"},
      {"<userdict_change><Key>k</Key><Value /></userdict_change>",
       "<userdict_change><Key>k</Key></userdict_change>", "Tag 'Value' not found within 'userdict_change'"},
      {"<config_changed />", "<playlist_changed />", "Tag 'ListID' not found within 'playlist_changed'"},
  };
  for (const auto &row : rows) {
    report (row.good);
    EXPECT_TRUE (connection_->error_slot_free ()) << row.good;
    report (row.bad);
    EXPECT_FALSE (connection_->error_slot_free ()) << row.bad;
    EXPECT_EQ (connection_->first_error_text ().to_std_string (), row.failure);
  }
  EXPECT_TRUE (notices ().empty ());
  cache ().each_item ([] (auto &item) { EXPECT_FALSE (item.valid); });
}

TEST_F (ChannelCacheTest, ListReportsMarkTheInformationValidAndRaiseNothing) {
  listplay ("list", "<ListID>EVENING</ListID><ListPlayMode>pgm_pvw</ListPlayMode>");
  EXPECT_TRUE (cache ().info.valid);
  EXPECT_FALSE (cache ().listplay.valid);
  EXPECT_TRUE (notices ().empty ());
  EXPECT_TRUE (list ().list_id.value == "EVENING");
  EXPECT_EQ (list ().mode.value_or (9), 1u);
}

TEST_F (ChannelCacheTest, ItemExistsReplacesOrGrowsTheList) {
  item ("exists", 2, "c");
  EXPECT_EQ (clips (), "- - c");
  item ("exists", 0, "a");
  item ("exists", 2, "C");
  EXPECT_EQ (clips (), "a - C");
  item ("exists", 3, "d");
  EXPECT_EQ (clips (), "a - C d");
}

TEST_F (ChannelCacheTest, InsertMovesAirPositions) {
  for (unsigned i = 0; i != 4; ++i)
    item ("exists", i, std::string (1, static_cast<char> ('a' + i)));
  air ("now", "2");
  air ("next", "1");
  air ("lock", "3");
  item ("insert", 2, "x");
  EXPECT_EQ (clips (), "a b x c d");
  EXPECT_EQ (positions (), "3 1 4 ");
  item ("insert", 5, "y"); // right behind the last
  EXPECT_EQ (clips (), "a b x c d y");
  EXPECT_EQ (positions (), "3 1 4 ");
}

TEST_F (ChannelCacheTest, InsertBeyondTheEndLeavesAirPositions) {
  air ("now", "7");
  item ("insert", 2, "x");
  EXPECT_EQ (clips (), "- - x");
  EXPECT_EQ (positions (), "7 - - ");
}

TEST_F (ChannelCacheTest, InsertMovesAirPositionsBehindTheLastToo) {
  for (unsigned i = 0; i != 4; ++i)
    item ("exists", i, std::string (1, static_cast<char> ('a' + i)));
  air ("lock", "4");
  item ("insert", 4, "x");
  EXPECT_EQ (clips (), "a b c d x");
  EXPECT_EQ (positions (), "- - 5 ");
}

TEST_F (ChannelCacheTest, RemoveBeyondTheEndMovesOrClearsAirPositions) {
  item ("exists", 0, "a");
  item ("exists", 1, "b");
  air ("now", "7");
  air ("next", "5");
  listplay ("item_remove", "<ListIndex>5</ListIndex>");
  EXPECT_EQ (clips (), "a b");
  EXPECT_EQ (positions (), "6 - - ");
}

TEST_F (ChannelCacheTest, RemoveMovesOrClearsAirPositions) {
  for (unsigned i = 0; i != 4; ++i)
    item ("exists", i, std::string (1, static_cast<char> ('a' + i)));
  air ("now", "1");
  air ("next", "2");
  air ("lock", "3");
  listplay ("item_remove", "<ListIndex>2</ListIndex>");
  EXPECT_EQ (clips (), "a b d");
  EXPECT_EQ (positions (), "1 - 2 ");
  listplay ("item_remove", "<ListIndex>9</ListIndex>");
  EXPECT_EQ (clips (), "a b d");
  EXPECT_EQ (positions (), "1 - 2 ");
  listplay ("item_remove", "<ListIndex>0</ListIndex>");
  EXPECT_EQ (clips (), "b d");
  EXPECT_EQ (positions (), "0 - 1 ");
}

TEST_F (ChannelCacheTest, AReportWithoutAPositionClearsIt) {
  air ("now", "1");
  air ("next", "65535");
  air ("now", "");
  EXPECT_EQ (positions (), "- 65535 - ");
}

TEST_F (ChannelCacheTest, ClearAllLeavesTheIdentifier) {
  listplay ("list", "<ListID>EVENING</ListID><ListPlayMode>single_channel</ListPlayMode>");
  item ("exists", 0, "a");
  air ("now", "0");
  listplay ("loop", "<Loop>loop</Loop>");
  listplay ("clear_all");
  EXPECT_TRUE (list ().list_id.value == "EVENING");
  EXPECT_TRUE (list ().mode.present);
  EXPECT_EQ (list ().loop.value_or (9), 1u);
  EXPECT_EQ (clips (), "");
  EXPECT_EQ (positions (), "- - - ");
}

TEST_F (ChannelCacheTest, UnloadedTakesAllButTheLoop) {
  listplay ("list", "<ListID>EVENING</ListID><ListPlayMode>single_channel</ListPlayMode>");
  item ("exists", 0, "a");
  air ("lock", "0");
  listplay ("loop", "<Loop>loop</Loop>");
  listplay ("unloaded");
  EXPECT_FALSE (list ().is_loaded ());
  EXPECT_FALSE (list ().mode.present);
  EXPECT_EQ (list ().loop.value_or (9), 1u);
  EXPECT_EQ (clips (), "");
  EXPECT_EQ (positions (), "- - - ");
}

// No report lets these queries succeed; what they would give then is in the mirror.
TEST_F (ChannelCacheTest, PlaylistQueriesReadTheMirror) {
  const uint32_t number = connections ().open (connection_);
  cache ().listplay.registered.store (true);
  uint32_t loaded = 77;
  uint32_t count = 77;
  EXPECT_EQ (orva_playlist_status (number, 1, &loaded), 0u);
  EXPECT_EQ (orva_playlist_count (number, 1, &count), 0u);
  EXPECT_EQ (loaded, 0u);
  EXPECT_EQ (count, 0u);
  listplay ("list", "<ListID>EVENING</ListID><ListPlayMode>pgm_pvw</ListPlayMode>");
  item ("exists", 0, "a");
  item ("exists", 1, "b");
  EXPECT_EQ (orva_playlist_status (number, 1, &loaded), 0u);
  EXPECT_EQ (orva_playlist_count (number, 1, &count), 0u);
  EXPECT_EQ (loaded, 1u);
  EXPECT_EQ (count, 2u);
  EXPECT_EQ (orva_playlist_status (number, 1, nullptr), 0u);
  EXPECT_EQ (orva_playlist_count (number, 1, nullptr), 0u);
  orva_close (number);
}

TEST_F (ChannelCacheTest, CountLeavesOutAnEmptyLastElement) {
  item ("exists", 0, "a");
  EXPECT_EQ (list ().count (), 0u); // no list is loaded
  listplay ("list", "<ListID>EVENING</ListID><ListPlayMode>single_channel</ListPlayMode>");
  EXPECT_EQ (list ().count (), 1u);
  item ("exists", 2, "c");
  EXPECT_EQ (list ().count (), 3u);
  listplay ("item_exists", "<ListIndex>3</ListIndex><ListElement><ContentID /></ListElement>");
  EXPECT_EQ (list ().count (), 3u);
  listplay ("clear_all");
  EXPECT_EQ (list ().count (), 0u);
  item ("exists", 2, "c");
  listplay ("item_remove", "<ListIndex>2</ListIndex>");
  EXPECT_EQ (clips (), "- -");
  EXPECT_EQ (list ().count (), 1u);
}

} // namespace
