// Texts, addresses, channels, positions and results, without a server.

#include "hpp/scripted.h"

#include <string>
#include <vector>

namespace {

using namespace orva;

bool good (std::string_view text) {
  return detail::Wide (text).bad () == nullptr;
}

TEST (Texts, AreStrictUtf8) {
  for (const char *text : {"", "a", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                           "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
    EXPECT_TRUE (good (text)) << text;
  for (const char *text :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2z", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xE0\xA0",
        "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF0\x90\x80",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF", "ok\xFF"})
    EXPECT_FALSE (good (text)) << text;
  EXPECT_FALSE (good (std::string_view ("a\0b", 3)));
  EXPECT_FALSE (good (std::string_view ("\0", 1)));
}

TEST (Texts, ReturnAsTheyWere) {
  for (const char *text : {"", "plain", "\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E", "\xEF\xBF\xBD"})
    EXPECT_EQ (detail::narrow (detail::Wide (text).c ()), text);
}

TEST (Texts, WithLoneSurrogatesAreNotShown) {
  using Units = std::basic_string<orva_char>;
  const auto unit = [] (unsigned value) { return Units (1, static_cast<orva_char> (value)); };
  for (const Units &units :
       {unit (0xD800), unit (0xDC00), unit ('a') + unit (0xDBFF), unit (0xD800) + unit ('a'),
        unit (0xDC00) + unit (0xD800), unit (0xD800) + unit (0xD800)})
    EXPECT_THROW (detail::narrow (units), internal);
}

TEST (Addresses, AreFourNumbers) {
  EXPECT_EQ (Address ("10.0.0.5").number (), 0x0A000005u);
  EXPECT_EQ (Address ("255.255.255.255").number (), 0xFFFFFFFFu);
  EXPECT_EQ (Address (0x7F000001u).text (), "127.0.0.1");
  for (const char *text : {"", ".", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.4 ", " 1.2.3.4", "1..3.4",
                           "1.2.3.", "0x1.2.3.4", "a.b.c.d", "1.2.3.-4", "0001.2.3.4", "localhost"})
    EXPECT_FALSE (Address (text).valid ()) << text;
}

TEST (ChannelNames, AreLettersAndNumbers) {
  EXPECT_EQ (Channel ('A'), Channel (0));
  EXPECT_EQ (Channel ('h'), Channel (7u));
  EXPECT_EQ (Channel (3L).letter (), 'D');
  for (const Channel channel : {Channel ('I'), Channel ('@'), Channel ('0'), Channel (8), Channel (-1),
                                Channel (256), Channel (0xFFFFFFFFFFFFFFFFu)})
    EXPECT_FALSE (channel.valid ());
}

TEST (ChannelSets, AreGoneOverInOrder) {
  std::string letters;
  for (const Channel channel : H | A | C)
    letters += channel.letter ();
  EXPECT_EQ (letters, "ACH");
  EXPECT_EQ (Channels::all ().mask (), 0xFFu);
  EXPECT_TRUE (Channels ().empty ());
  EXPECT_FALSE ((A | Channel (8)).valid ());
  EXPECT_EQ ((Channels{A, B}), A | B);
}

struct TimecodeRow {
  Timebase base;
  std::int64_t fields;
  const char *text;
};

TEST (Timecodes, AreWrittenAndRead) {
  const Timebase drop = Rate::hz_59_94, plain (Rate::hz_59_94, false);
  const TimecodeRow rows[] = {
      {Rate::hz_50, 0, "00:00:00:00"},
      {Rate::hz_50, 1, "00:00:00:00.5"},
      {Rate::hz_50, 49, "00:00:00:24.5"},
      {Rate::hz_50, 50, "00:00:01:00"},
      {Rate::hz_50, 50LL * 3600 * 25, "25:00:00:00"},
      {Rate::hz_60, 60 * 60, "00:01:00:00"},
      {Rate::hz_48, 47, "00:00:00:23.5"},
      {Rate::hz_47_95, 48, "00:00:01:00"},
      {plain, 3600, "00:01:00:00"},
      {drop, 3599, "00:00:59;29.5"},
      {drop, 3600, "00:01:00;02"},
      {drop, 3600 + 3596, "00:02:00;02"},
      {drop, 35963, "00:09:59;29.5"},
      {drop, 35964, "00:10:00;00"},
      {drop, 215784, "01:00:00;00"},
      {drop, 5178816, "24:00:00;00"},
  };
  for (const TimecodeRow &row : rows) {
    EXPECT_EQ (Position (row.fields).text (row.base), row.text);
    const result<Position> read = Position::parse (row.text, row.base);
    ASSERT_TRUE (read) << row.text;
    EXPECT_EQ (read->fields (), row.fields);
  }
  EXPECT_EQ (Position (-50).text (Rate::hz_50), "-00:00:01:00");
  EXPECT_EQ (Position::parse ("00:01:00:02", drop)->fields (), 3600);
}

TEST (Timecodes, ReturnForEachFrameOfADayWithDropFrame) {
  const Timebase drop = Rate::hz_59_94;
  for (std::int64_t fields = 0; fields < 5178816;
       fields += 2 * 97) // 97 has no factor in common with a minute
    ASSERT_EQ (Position::parse (Position (fields).text (drop), drop)->fields (), fields);
}

TEST (Timecodes, ThatAreNoneAreRefused) {
  const Timebase drop = Rate::hz_59_94;
  for (const char *text :
       {"00:01:00;00", "00:01:00;01", "00:11:00;00", "00:00:00;30", "00:60:00;00", "00:00:60;00", "", "1",
        "1:2:3", "1:2:3;", "-1:00:00;00", "00:00:00;00.4", "00:00:00;00x", "00;00;00;00"})
    EXPECT_FALSE (Position::parse (text, drop)) << text;
  EXPECT_FALSE (Position::parse ("00:00:00;00", Rate::hz_50));
  EXPECT_FALSE (Position::parse ("00:00:00:25", Rate::hz_50));
}

TEST (Positions, AreCounted) {
  EXPECT_EQ (Position::from_frames (25).fields (), 50);
  EXPECT_EQ (Position (51).frames (), 25);
  EXPECT_TRUE (Position (51).second_field ());
  EXPECT_EQ (Position (-1).frames (), -1);
  EXPECT_FALSE (Position (-1).valid ());
  EXPECT_TRUE (Position (4294967295).valid ());
  EXPECT_FALSE (Position (4294967296).valid ());
  EXPECT_EQ (Position (10) - Position (20), Position (-10));
  EXPECT_LT (Position (1), Position (2));
}

TEST (Positions, TakeTime) {
  using namespace std::chrono_literals;
  EXPECT_EQ (Position (50).time (Rate::hz_50), 1s);
  EXPECT_EQ (Position (60000).time (Rate::hz_59_94), 1001s);
  EXPECT_EQ (Position (48000).time (Rate::hz_47_95), 1001s);
  EXPECT_EQ (Position (1).time (Rate::hz_59_94), 16683333ns);
  EXPECT_EQ (Position (4294967295).time (Rate::hz_50), 85899345s + 900ms);
}

TEST (VideoStandards, SayWhatTheyCannotTell) {
  EXPECT_TRUE ((Video{Standard::i1080_50, Rate::hz_50, Resolution::i1080}.standard_certain ()));
  const Video progressive_50{Standard::i1080_60, Rate::hz_50, Resolution::i1080};
  EXPECT_FALSE (progressive_50.standard_certain ());
  EXPECT_TRUE (progressive_50.rate_certain ());
  EXPECT_EQ (progressive_50.timebase ().frames_per_second (), 25);
  const Video any{Standard::i1080_60, Rate::hz_60, Resolution::i1080};
  EXPECT_FALSE (any.standard_certain ());
  EXPECT_FALSE (any.timebase ().certain ());
}

TEST (Results, HoldAValueOrAFailure) {
  const result<int> seven (7);
  EXPECT_TRUE (seven);
  EXPECT_EQ (*seven, 7);
  EXPECT_EQ (seven.value_or (8), 7);
  const result<int> none (Failure{Kind::refused, "No"});
  EXPECT_FALSE (none);
  EXPECT_EQ (none.value_or (8), 8);
  EXPECT_EQ (none.failure ().text, "No");
  EXPECT_THROW (none.value (), orva::refused);
  EXPECT_NO_THROW (result<void> ().value ());
}

TEST (Failures, ThrowTheirOwnExceptions) {
  EXPECT_THROW ((Failure{Kind::invalid, ""}.raise ()), invalid);
  EXPECT_THROW ((Failure{Kind::not_connected, ""}.raise ()), not_connected);
  EXPECT_THROW ((Failure{Kind::link_lost, ""}.raise ()), link_lost);
  EXPECT_THROW ((Failure{Kind::refused, ""}.raise ()), orva::refused);
  EXPECT_THROW ((Failure{Kind::timed_out, ""}.raise ()), timed_out);
  EXPECT_THROW ((Failure{Kind::cancelled, ""}.raise ()), cancelled);
  EXPECT_THROW ((Failure{Kind::unsupported, ""}.raise ()), unsupported);
  EXPECT_THROW ((Failure{Kind::internal, ""}.raise ()), internal);
  for (const Kind kind : {Kind::link_lost, Kind::timed_out, Kind::cancelled, Kind::internal})
    EXPECT_TRUE ((Failure{kind, ""}.outcome_unknown ()));
  for (const Kind kind : {Kind::invalid, Kind::not_connected, Kind::refused, Kind::unsupported})
    EXPECT_FALSE ((Failure{kind, ""}.outcome_unknown ()));
}

} // namespace
