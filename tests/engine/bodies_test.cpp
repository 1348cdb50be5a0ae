// Every body that a message can hold. It is delivered with all tags, and without its optional ones. It is
// refused with the exact text when a required tag is missing, doubled or bad.

#include "engine/recorder.h"
#include "xml/xml_parse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct TagCase {
  const char *name;
  const char *good;     ///< the element
  const char *bad;      ///< an element that is refused, null where every text will do
  const char *bad_text; ///< what is recorded then; `%` stands for the name of the body
  bool optional = false;
};

struct BodyCase {
  const char *name;
  std::vector<TagCase> tags;
  const char *delivered; ///< the values
};

const TagCase error_message{"ErrorMessage", "<ErrorMessage> no such clip </ErrorMessage>", nullptr, nullptr};
const TagCase error_code{"ErrorCode", "<ErrorCode>clipnotfound</ErrorCode>", "<ErrorCode>fatal</ErrorCode>",
                         "Tag % contains invalid value 'ErrorCode'"};
const TagCase clip{"ClipID", "<ClipID>NEWS0123</ClipID>", nullptr, nullptr};
const TagCase optional_clip{"ClipID", "<ClipID>NEWS0123</ClipID>", nullptr, nullptr, true};
const TagCase exists{"Exists", "<Exists>true</Exists>", "<Exists>TRUE</Exists>",
                     "Tag Exists contains invalid boolean value 'TRUE'"};
const TagCase directory{"DirectoryName", "<DirectoryName>sport</DirectoryName>", nullptr, nullptr};
const TagCase configuration_item{
    "ConfigurationItem",
    "<ConfigurationItem><ConfigurationItemName>fan</ConfigurationItemName>"
    "<ConfigurationItemAccess>eng</ConfigurationItemAccess>"
    "<ConfigurationItemEffectiveValue>on</ConfigurationItemEffectiveValue>"
    "<ConfigurationItemBootValue>off</ConfigurationItemBootValue>"
    "<ConfigurationItemSavedValue>off</ConfigurationItemSavedValue>"
    "<ConfigurationItemAllowedValues><ConfigurationItemValue>on</ConfigurationItemValue>"
    "</ConfigurationItemAllowedValues></ConfigurationItem>",
    "<ConfigurationItem><ConfigurationItemName>fan</ConfigurationItemName>"
    "<ConfigurationItemAccess>root</ConfigurationItemAccess></ConfigurationItem>",
    "Tag ConfigurationItem contains invalid value 'ConfigurationItemAccess'"};
const TagCase clip_info{
    "ClipInfo",
    "<ClipInfo><ClipID>C1</ClipID><VideoStandard>1080_50i</VideoStandard>"
    "<TrackInfoVector><TrackInfo><TrackType>video</TrackType></TrackInfo></TrackInfoVector>"
    "<Title>Goal</Title><Creator>me</Creator><Project>cup</Project><Playback>auto</Playback>"
    "<Interp>on</Interp><Loop>off</Loop><LoopOut>9</LoopOut><LoopIn>0</LoopIn><ClipLength>250</ClipLength>"
    "<TimecodeSource>striped</TimecodeSource><StripeTimecode><Valid>false</Valid></StripeTimecode>"
    "<ReadOnly>false</ReadOnly><ClipUUID>u-1</ClipUUID></ClipInfo>",
    "<ClipInfo><ClipID>C1</ClipID><VideoStandard>1080_50i</VideoStandard>"
    "<TrackInfoVector /><Title>Goal</Title><Creator /><Project /><Playback>auto</Playback>"
    "<Interp>on</Interp><Loop>off</Loop><LoopOut>9</LoopOut><LoopIn>0</LoopIn><ClipLength>250</ClipLength>"
    "<TimecodeSource>striped</TimecodeSource><StripeTimecode><Valid>false</Valid></StripeTimecode></"
    "ClipInfo>",
    "Tag 'ReadOnly' not found within 'ClipInfo'"};
const TagCase computer{"ComputerName", "<ComputerName>SERVER1</ComputerName>", nullptr, nullptr};
const TagCase reference{"ReferenceSource", "<ReferenceSource>refsdhd</ReferenceSource>",
                        "<ReferenceSource>moon</ReferenceSource>",
                        "Tag % contains invalid value 'ReferenceSource'"};
const TagCase standard{"VideoStandard", "<VideoStandard>1080_50i</VideoStandard>",
                       "<VideoStandard>405</VideoStandard>", "Tag % contains invalid value 'VideoStandard'"};
const TagCase rate{"VideoRate", "<VideoRate>50</VideoRate>", "<VideoRate>51</VideoRate>",
                   "Tag % contains invalid value 'VideoRate'"};
const TagCase resolution{"VideoResolution", "<VideoResolution>1080i</VideoResolution>",
                         "<VideoResolution>8K</VideoResolution>",
                         "Tag % contains invalid value 'VideoResolution'"};
const TagCase total{"TotalDiskSpace", "<TotalDiskSpace>18446744073709551615</TotalDiskSpace>",
                    "<TotalDiskSpace>much</TotalDiskSpace>",
                    "Tag TotalDiskSpace contains invalid value 'much'"};
const TagCase available{"AvailableDiskSpace", "<AvailableDiskSpace> 101 </AvailableDiskSpace>",
                        "<AvailableDiskSpace> -1 </AvailableDiskSpace>",
                        "Tag AvailableDiskSpace contains invalid value '-1'"};
const TagCase field_size{"FieldSize", "<FieldSize>10</FieldSize>", "<FieldSize>4294967296</FieldSize>",
                         "Tag FieldSize contains invalid value '4294967296'"};
const TagCase version{"SVNVersion", "<SVNVersion>4711M</SVNVersion>", nullptr, nullptr};
const TagCase path{"SVNPath", "<SVNPath>trunk</SVNPath>", nullptr, nullptr};
const TagCase compression{
    "CompressionInfo",
    "<CompressionInfo><CompressionYSize>1</CompressionYSize><CompressionCSize>2</CompressionCSize>"
    "<CompressionKSize>3</CompressionKSize><AudioTrackCount>8</AudioTrackCount>"
    "<CompressionVSymbol>v</CompressionVSymbol><CompressionKSymbol>k</CompressionKSymbol>"
    "<CompressionASymbol>a</CompressionASymbol></CompressionInfo>",
    "<CompressionInfo><CompressionYSize>1</CompressionYSize><CompressionCSize>2</CompressionCSize>"
    "<CompressionKSize>3</CompressionKSize><AudioTrackCount>256</AudioTrackCount></CompressionInfo>",
    "Tag AudioTrackCount contains invalid value '256'"};
const TagCase melt_item{
    "MeltItem",
    "<MeltItem><MeltClientID>1</MeltClientID><MeltListID>2</MeltListID><MeltElementID>3</MeltElementID>"
    "<ClipID>C1</ClipID><MeltInPoint>0</MeltInPoint><MeltOutPoint>50</MeltOutPoint>"
    "<MeltLabel>first</MeltLabel></MeltItem>",
    "<MeltItem><MeltClientID>1</MeltClientID><MeltListID>2</MeltListID></MeltItem>",
    "Tag 'MeltElementID' not found within 'MeltItem'"};
const TagCase melt_flags{
    "MeltFlags", "<MeltFlags><MeltClientID>4</MeltClientID><MeltFlagInhibitListNumbering /></MeltFlags>",
    "<MeltFlags><MeltClientID>four</MeltClientID></MeltFlags>",
    "Tag MeltClientID contains invalid value 'four'"};
const TagCase swapped{"StealSwapped", "<StealSwapped>false</StealSwapped>", "<StealSwapped></StealSwapped>",
                      "Tag StealSwapped contains invalid boolean value ''"};
const TagCase list{"ListID", "<ListID>evening</ListID>", nullptr, nullptr};
const TagCase chase{"ChaseID", "<ChaseID>replays</ChaseID>", nullptr, nullptr};
const TagCase list_element{
    "ListElement",
    "<ListElement><ContentID><ClipID>C1</ClipID></ContentID><ListElementAtEnd>loop</ListElementAtEnd>"
    "</ListElement>",
    "<ListElement><ListElementAtEnd>loop</ListElementAtEnd></ListElement>",
    "Tag 'ContentID' not found within 'ListElement'"};
const TagCase chase_element{
    "ChaseElement",
    "<ChaseElement><ContentID><VClipID>V1</VClipID></ContentID><TcStartTrigger>77</TcStartTrigger>"
    "</ChaseElement>",
    "<ChaseElement><ContentID /><TcStartTrigger>x</TcStartTrigger></ChaseElement>",
    "Tag TcStartTrigger contains invalid value 'x'"};
const TagCase database{"MetadataDatabase", "<MetadataDatabase>clips</MetadataDatabase>", nullptr, nullptr};
const TagCase prefix{"MetadataPrefix", "<MetadataPrefix>a.</MetadataPrefix>", nullptr, nullptr};
const TagCase metadata_list{"MetadataList",
                            "<MetadataList><Metadata><Key>k</Key><Value>v</Value></Metadata>"
                            "<Metadata><Key>l</Key><Value /></Metadata></MetadataList>",
                            "<MetadataList><Metadata><Key>k</Key></Metadata></MetadataList>",
                            "Tag 'Value' not found within 'Metadata'"};
const TagCase key_list{"KeyList", "<KeyList><Key>k</Key><Key>l</Key></KeyList>", nullptr, nullptr};
const TagCase channel{"Channel", "<Channel>B</Channel>", "<Channel>M</Channel>",
                      "Tag % contains invalid value 'Channel'"};
const TagCase display{"DisplayTimecode",
                      "<DisplayTimecode><Valid>true</Valid><FieldNumber>-5</FieldNumber></DisplayTimecode>",
                      "<DisplayTimecode><FieldNumber>5</FieldNumber></DisplayTimecode>",
                      "Tag 'Valid' not found within 'DisplayTimecode'"};
const TagCase input{"InputTimecode", "<InputTimecode><Valid>false</Valid></InputTimecode>",
                    "<InputTimecode><Valid>maybe</Valid></InputTimecode>",
                    "Tag Valid contains invalid boolean value 'maybe'"};
const TagCase timecode{"Timecode", "<Timecode><Valid>1</Valid><FieldNumber>90000</FieldNumber></Timecode>",
                       "<Timecode><Valid>1</Valid><DropFrameFlag>yes</DropFrameFlag></Timecode>",
                       "Tag Timecode contains invalid value 'DropFrameFlag'"};
const TagCase length{"ClipLength", "<ClipLength>250</ClipLength>", "<ClipLength />",
                     "Tag ClipLength contains invalid value ''"};
const TagCase position{"ClipPosition", "<ClipPosition>125</ClipPosition>", "<ClipPosition>1.5</ClipPosition>",
                       "Tag ClipPosition contains invalid value '1.5'"};
const TagCase configuration_change{
    "ConfigurationChange",
    "<ConfigurationChange><ConfigurationItem><ConfigurationItemName>fan</ConfigurationItemName>"
    "<ConfigurationItemAccess>eng</ConfigurationItemAccess>"
    "<ConfigurationItemEffectiveValue>on</ConfigurationItemEffectiveValue>"
    "<ConfigurationItemBootValue /><ConfigurationItemSavedValue /><ConfigurationItemAllowedValues />"
    "</ConfigurationItem></ConfigurationChange>",
    "<ConfigurationChange><ConfigurationItem /></ConfigurationChange>", nullptr, true};
const TagCase space{"DiskSpaceChange",
                    "<DiskSpaceChange><TotalDiskSpace>1000</TotalDiskSpace>"
                    "<AvailableDiskSpace>10</AvailableDiskSpace></DiskSpaceChange>",
                    "<DiskSpaceChange><TotalDiskSpace>1000</TotalDiskSpace></DiskSpaceChange>",
                    "Tag 'AvailableDiskSpace' not found within 'DiskSpaceChange'"};
const TagCase temperature{"Temperature10", "<Temperature10>423</Temperature10>",
                          "<Temperature10>-1</Temperature10>",
                          "Tag Temperature10 contains invalid value '-1'"};
const TagCase status{"ChannelStatus", "<ChannelStatus>record</ChannelStatus>",
                     "<ChannelStatus>Record</ChannelStatus>", "Tag % contains invalid value 'ChannelStatus'"};
const TagCase speed{"Speed", "<Speed>-1.5X</Speed>", "<Speed>fast</Speed>",
                    "Tag Speed contains invalid value 'fast'"};
const TagCase information{"ChannelInformation",
                          "<ChannelInformation><ClipID>C1</ClipID><Angle>3</Angle></ChannelInformation>",
                          "<ChannelInformation><ClipID>C1</ClipID><Angle>256</Angle></ChannelInformation>",
                          "Tag Angle contains invalid value '256'"};
const TagCase melt_client{"MeltClientID", "<MeltClientID>8</MeltClientID>",
                          "<MeltClientID>8 9</MeltClientID>",
                          "Tag MeltClientID contains invalid value '8 9'"};
const TagCase play_mode{"ListPlayMode", "<ListPlayMode>pgm_pvw</ListPlayMode>",
                        "<ListPlayMode>solo</ListPlayMode>", "Tag % contains invalid value 'ListPlayMode'"};
const TagCase list_index{"ListIndex", "<ListIndex> 65535 </ListIndex>", "<ListIndex> 65536 </ListIndex>",
                         "Tag ListIndex contains invalid value '65536'"};
const TagCase chase_index{"ChaseIndex", "<ChaseIndex>2</ChaseIndex>", "<ChaseIndex>two</ChaseIndex>",
                          "Tag ChaseIndex contains invalid value 'two'"};
const TagCase list_place{"ListPlaybackIndex",
                         "<ListPlaybackIndex><ListIndex>7</ListIndex></ListPlaybackIndex>",
                         "<ListPlaybackIndex><ListIndex>x</ListIndex></ListPlaybackIndex>",
                         "Tag ListIndex contains invalid value 'x'"};
const TagCase chase_place{"ChasePlaybackIndex", "<ChasePlaybackIndex />",
                          "<ChasePlaybackIndex><ChaseIndex>1</ChaseIndex><ChaseIndex>1</ChaseIndex>"
                          "</ChasePlaybackIndex>",
                          "More than one tag 'ChaseIndex' found within 'ChasePlaybackIndex'"};
const TagCase loop{"Loop", "<Loop>pingpongto</Loop>", "<Loop>Auto</Loop>",
                   "Tag % contains invalid value 'Loop'"};
const TagCase modified{"ModifiedFlag", "<ModifiedFlag>modified</ModifiedFlag>",
                       "<ModifiedFlag>1</ModifiedFlag>", "Tag % contains invalid value 'ModifiedFlag'"};
const TagCase key{"Key", "<Key>colour</Key>", nullptr, nullptr};
const TagCase value{"Value", "<Value>a&lt;b</Value>", nullptr, nullptr};
const TagCase alert{
    "Alert",
    "<Alert><AlertingPriority>harmful</AlertingPriority><AlertingLevel>warning</AlertingLevel>"
    "<AlertName>fan</AlertName><AlertNameDescription>Fan</AlertNameDescription>"
    "<AlertValueDescription>slow</AlertValueDescription></Alert>",
    "<Alert><AlertingPriority>low</AlertingPriority></Alert>",
    "Tag Alert contains invalid value 'AlertingPriority'"};

// In the order of the numbering: 24 replies, then 47 reports.
const BodyCase bodies[] = {
    {"ok", {}, ""},
    {"error", {error_message, error_code}, "  no such clip  1"},
    {"clipexists", {clip, exists}, " NEWS0123 true"},
    {"clipid", {clip}, " NEWS0123"},
    {"directory_name", {directory}, " sport"},
    {"configuration_item", {configuration_item}, " fan=on"},
    {"one_configuration_item", {configuration_item}, " fan=on"},
    {"clipinfo", {clip_info}, " C1/Goal/250/u-1"},
    {"computername", {computer}, " SERVER1"},
    {"reference_source", {reference}, " 3"},
    {"video_standard", {standard, rate, resolution}, " 19 2 2"},
    {"disk_usage", {total, available, field_size}, " 18446744073709551615 101 10"},
    {"version_info", {version, path}, " 4711M trunk"},
    {"compression_info", {compression}, " 1/a"},
    {"melt_item", {melt_item}, " 3/C1/first"},
    {"melt_flags", {melt_flags}, " 4/true"},
    {"steal_info", {swapped}, " false"},
    {"listid", {list}, " evening"},
    {"chaseid", {chase}, " replays"},
    {"list_element", {list_element}, " C1/2"},
    {"chase_element", {chase_element}, " V1/77"},
    {"metadata", {database, prefix, metadata_list}, " clips a. [k=v,l=]"},
    {"volatile_file_info", {key_list}, " [k,l]"},
    {"channel_current_timecode", {channel, display, length, position}, " 1 true/-5 250 125"},
    {"clip_created", {clip}, " NEWS0123"},
    {"clip_changed", {clip}, " NEWS0123"},
    {"clip_deleted", {clip}, " NEWS0123"},
    {"directory_created", {directory}, " sport"},
    {"directory_deleted", {directory}, " sport"},
    {"playlist_created", {list}, " evening"},
    {"playlist_changed", {list}, " evening"},
    {"playlist_deleted", {list}, " evening"},
    {"chaselist_created", {chase}, " replays"},
    {"chaselist_changed", {chase}, " replays"},
    {"chaselist_deleted", {chase}, " replays"},
    {"config_changed", {configuration_change}, " [fan=on]"},
    {"disk_space_changed", {space}, " 1000/10"},
    {"temperature", {temperature}, " 423"},
    {"chase_ltc_timecode", {timecode}, " true/90000"},
    {"channel_status", {channel, status, optional_clip}, " 1 5 NEWS0123"},
    {"channel_clipid", {channel, clip}, " 1 NEWS0123"},
    {"channel_speed", {channel, speed}, " 1 -98304"},
    {"channel_timecode", {channel, position, display, input}, " 1 125 true/-5 false/-"},
    {"channel_aux_audio_timecode", {channel, position}, " 1 125"},
    {"channel_info", {channel, information}, " 1 C1/3"},
    {"melt_available", {melt_client}, " 8"},
    {"channel_listplay_list", {channel, list, play_mode}, " 1 evening 1"},
    {"channel_listplay_unloaded", {channel}, " 1"},
    {"channel_listplay_item_exists", {channel, list_index, list_element}, " 1 65535 C1/2"},
    {"channel_listplay_item_insert", {channel, list_index, list_element}, " 1 65535 C1/2"},
    {"channel_listplay_item_remove", {channel, list_index}, " 1 65535"},
    {"channel_listplay_clear_all", {channel}, " 1"},
    {"channel_listplay_air_now", {channel, list_place}, " 1 7"},
    {"channel_listplay_air_lock", {channel, list_place}, " 1 7"},
    {"channel_listplay_air_next", {channel, list_place}, " 1 7"},
    {"channel_listplay_loop", {channel, loop}, " 1 4"},
    {"channel_listplay_modified", {channel, modified}, " 1 1"},
    {"channel_chaseplay_chase", {channel, chase}, " 1 replays"},
    {"channel_chaseplay_unloaded", {channel}, " 1"},
    {"channel_chaseplay_item_exists", {channel, chase_index, chase_element}, " 1 2 V1/77"},
    {"channel_chaseplay_item_insert", {channel, chase_index, chase_element}, " 1 2 V1/77"},
    {"channel_chaseplay_item_remove", {channel, chase_index}, " 1 2"},
    {"channel_chaseplay_clear_all", {channel}, " 1"},
    {"channel_chaseplay_air_now", {channel, chase_place}, " 1 -"},
    {"channel_chaseplay_modified", {channel, modified}, " 1 1"},
    {"metadata_change", {database, prefix, metadata_list}, " clips a. [k=v,l=]"},
    {"metadata_remove", {database, prefix, key_list}, " clips a. [k,l]"},
    {"export_requested", {channel}, " 1"},
    {"userdict_change", {key, value}, " colour a<b"},
    {"alert", {alert}, " fan/2"},
    {"ltc_timecode", {timecode}, " true/90000"},
};
constexpr size_t replies = 24;

// The tags of a body, with the one at `place` written as `instead`.
std::string tags_of (const BodyCase &body, size_t place = SIZE_MAX, const std::string &instead = "") {
  std::string all;
  for (size_t i = 0; i != body.tags.size (); ++i)
    all += i == place ? instead : body.tags[i].good;
  return all;
}

class Bodies : public ::testing::TestWithParam<size_t> {
protected:
  const BodyCase &body = bodies[GetParam ()];
  const bool is_reply = GetParam () < replies;
  Recorder<QUILL3::APIParser> parser;

  // Dispatches the body with these tags under the identifier 7, behind a message whose error is known.
  void receive (const std::string &tags) {
    parser.dispatch_message (XMLTree ("stale"));
    std::string inner = std::string ("<") + body.name + ">" + tags + "</" + body.name + ">";
    std::string all =
        is_reply ? "<reply><xid>7</xid>" + inner + "</reply>" : "<report>" + inner + "</report>";
    XMLTree message = parse_xml_text (AString::from_utf8 (all));
    ASSERT_FALSE (message.is_null ()) << all;
    parser.dispatch_message (message);
  }

  std::string delivered () const { return std::string (body.name) + (is_reply ? " 7" : "") + body.delivered; }

  void expect_refusal (const std::string &text, const std::string &what) {
    EXPECT_THAT (parser.calls, IsEmpty ()) << what;
    EXPECT_FALSE (parser.error_slot_free ()) << what;
    EXPECT_EQ (parser.first_error_xid ().to_std_string (), is_reply ? "7" : "") << what;
    EXPECT_EQ (parser.first_error_text ().to_std_string (), text) << what;
    parser.calls.clear ();
  }

  // The call made although the optional tag at `place` was not there, or no good.
  void expect_absence (size_t place) {
    std::string call = delivered ();
    ASSERT_EQ (place + 1, body.tags.size ()); // the optional ones stand last
    EXPECT_THAT (parser.calls, ElementsAre (call.substr (0, call.rfind (' ')) + " -"));
    EXPECT_TRUE (parser.error_slot_free ());
    parser.calls.clear ();
  }

  void receive_and_expect (size_t place, const std::string &tag, const std::string &text) {
    receive (tags_of (body, place, tag));
    if (body.tags[place].optional)
      expect_absence (place);
    else
      expect_refusal (text, body.tags[place].name);
  }
};

TEST_P (Bodies, AreDeliveredWithAllTags) {
  receive (tags_of (body));
  EXPECT_THAT (parser.calls, ElementsAre (delivered ()));
  EXPECT_TRUE (parser.error_slot_free ());
}

TEST_P (Bodies, AreReadByNameWhateverTheOrderAndWhateverElseIsThere) {
  std::string reversed;
  for (const TagCase &tag : body.tags)
    reversed = tag.good + std::string ("<Unknown>1</Unknown>") + reversed;
  receive (reversed);
  EXPECT_THAT (parser.calls, ElementsAre (delivered ()));
}

TEST_P (Bodies, NeedEachRequiredTag) {
  for (size_t i = 0; i != body.tags.size (); ++i)
    receive_and_expect (i, "",
                        std::string ("Tag '") + body.tags[i].name + "' not found within '" + body.name + "'");
}

TEST_P (Bodies, RefuseADoubledTag) {
  for (size_t i = 0; i != body.tags.size (); ++i)
    receive_and_expect (i, std::string (body.tags[i].good) + body.tags[i].good,
                        std::string ("More than one tag '") + body.tags[i].name + "' found within '" +
                            body.name + "'");
}

TEST_P (Bodies, RefuseABadValue) {
  for (size_t i = 0; i != body.tags.size (); ++i) {
    if (body.tags[i].bad == nullptr)
      continue;
    std::string text = body.tags[i].bad_text != nullptr ? body.tags[i].bad_text : "";
    if (size_t at = text.find ('%'); at != std::string::npos)
      text.replace (at, 1, body.name);
    receive_and_expect (i, body.tags[i].bad, text);
  }
}

TEST_P (Bodies, TellOfTheFirstTagInOrderThatIsBad) {
  if (body.tags.empty () || body.tags[0].optional)
    return;
  receive ("");
  expect_refusal (std::string ("Tag '") + body.tags[0].name + "' not found within '" + body.name + "'",
                  "none");
}

INSTANTIATE_TEST_SUITE_P (All, Bodies, ::testing::Range (size_t{0}, std::size (bodies)),
                          [] (const auto &param) { return std::string (bodies[param.param].name); });

TEST (BodyNumbering, HasTheseNamesInThisOrder) {
  ASSERT_EQ (std::size (bodies), 71u);
  EXPECT_EQ (QUILL3::reply_count, 24u);
  EXPECT_EQ (QUILL3::report_count, 47u);
  for (uint32_t number = 0; number != 71; ++number) {
    const bool is_reply = number < replies;
    const EnumString &own =
        is_reply ? QUILL3::APIParser::reply_bodies () : QUILL3::APIParser::report_bodies ();
    const EnumString &other =
        is_reply ? QUILL3::APIParser::report_bodies () : QUILL3::APIParser::reply_bodies ();
    uint32_t found = 999;
    EXPECT_TRUE (own.from_string (bodies[number].name, &found)) << bodies[number].name;
    EXPECT_EQ (found, number) << bodies[number].name;
    EXPECT_FALSE (other.from_string (bodies[number].name)) << bodies[number].name;
  }
  EXPECT_EQ (static_cast<uint32_t> (QUILL3::BodyNumber::ok), 0u);
  EXPECT_EQ (static_cast<uint32_t> (QUILL3::BodyNumber::channel_current_timecode), 23u);
  EXPECT_EQ (static_cast<uint32_t> (QUILL3::BodyNumber::clip_created), 24u);
  EXPECT_EQ (static_cast<uint32_t> (QUILL3::BodyNumber::ltc_timecode), 70u);
  EXPECT_EQ (QUILL3::APIParser::reply_bodies ().value_of ("bogus"), 4294967295u);
  EXPECT_EQ (QUILL3::APIParser::report_bodies ().text_of (71), AString ());
}

// Bodies are handed over by value on a thread with 64 KiB of stack.
TEST (BodySizes, FitASmallStack) {
#define SMALL(name) static_assert (sizeof (QUILL3::body::name) <= 4096);
#define REPLY(name, ...) SMALL (name)
#define REPORT(name, ...) SMALL (name)
#include "engine/bodies.inc"
#undef SMALL
  EXPECT_LE (sizeof (QUILL3::body::configuration_item), 4096u);
}

} // namespace
