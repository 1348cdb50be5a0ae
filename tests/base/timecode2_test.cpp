#include "base/timecode2.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

struct Lengths {
  uint32_t rate;
  bool dropframe;
  uint32_t second, minute, ten_minutes, hour, day;
};

// The days of rates 3 and 7 are those of rates 2 and 6.
constexpr Lengths all_lengths[] = {
    {0, false, 60, 3600, 36000, 216000, 5184000}, {0, true, 60, 3600, 36000, 216000, 5184000},
    {1, false, 60, 3600, 36000, 216000, 5184000}, {1, true, 60, 3596, 35964, 215784, 5178816},
    {2, false, 50, 3000, 30000, 180000, 4320000}, {2, true, 50, 3000, 30000, 180000, 4320000},
    {3, false, 48, 2880, 28800, 172800, 4320000}, {3, true, 48, 2880, 28800, 172800, 4320000},
    {4, false, 30, 1800, 18000, 108000, 2592000}, {4, true, 30, 1800, 18000, 108000, 2592000},
    {5, false, 30, 1800, 18000, 108000, 2592000}, {5, true, 30, 1798, 17982, 107892, 2589408},
    {6, false, 25, 1500, 15000, 90000, 2160000},  {6, true, 25, 1500, 15000, 90000, 2160000},
    {7, false, 24, 1440, 14400, 86400, 2160000},  {7, true, 24, 1440, 14400, 86400, 2160000},
};

// Days, hours, minutes, seconds, frames, odd field.
using Parts = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, bool>;

Parts parts (const timecode2 &position) {
  return {position.days (),    position.hours (),  position.minutes (),
          position.seconds (), position.frames (), position.is_odd_field ()};
}

std::string text (const timecode2 &position, uint32_t minimum_parts) {
  return position.to_text (minimum_parts).to_std_string ();
}

TEST (timecode2, lengths_of_every_rate) {
  for (const Lengths &row : all_lengths) {
    SCOPED_TRACE (row.rate);
    EXPECT_EQ (timecode2::fields_per_second (row.rate, row.dropframe), row.second);
    EXPECT_EQ (timecode2::fields_per_minute (row.rate, row.dropframe), row.minute);
    EXPECT_EQ (timecode2::fields_per_ten_minutes (row.rate, row.dropframe), row.ten_minutes);
    EXPECT_EQ (timecode2::fields_per_hour (row.rate, row.dropframe), row.hour);
    EXPECT_EQ (timecode2::fields_per_day (row.rate, row.dropframe), row.day);
  }
}

TEST (timecode2, unknown_rate_reports_and_counts_as_59_94_drop_frame) {
  AssertCounter failures;
  EXPECT_EQ (timecode2::fields_per_second (8, false), 60u);
  EXPECT_EQ (timecode2::fields_per_minute (8, false), 3596u);
  EXPECT_EQ (timecode2::fields_per_ten_minutes (8, false), 35964u);
  EXPECT_EQ (timecode2::fields_per_hour (8, false), 215784u);
  EXPECT_EQ (timecode2::fields_per_day (UINT32_MAX, false), 5178816u);
  EXPECT_EQ (failures.count (), 5u);
  EXPECT_EQ (parts (timecode2 (8, 3661)), Parts (0, 0, 1, 1, 0, true)); // taken apart at 60
}

TEST (timecode2, default_is_undefined) {
  AssertCounter failures;
  const timecode2 nothing;
  EXPECT_FALSE (nothing.is_defined ());
  EXPECT_EQ (nothing.count (), 0u);
  EXPECT_FALSE (nothing.is_dropframe ());
  EXPECT_EQ (failures.count (), 0u);
}

TEST (timecode2, parts_of_an_undefined_value_report_and_stay_as_they_were) {
  AssertCounter failures;
  const timecode2 nothing;
  EXPECT_EQ (nothing.days (), 0u);
  EXPECT_EQ (nothing.hours (), 0u);
  EXPECT_EQ (nothing.minutes (), 0u);
  EXPECT_EQ (nothing.seconds (), 0u);
  EXPECT_EQ (nothing.frames (), 0u);
  EXPECT_EQ (failures.count (), 5u);
  EXPECT_FALSE (nothing.is_odd_field ());
  EXPECT_EQ (failures.count (), 6u);
  EXPECT_EQ (text (nothing, 5), "");
  EXPECT_EQ (failures.count (), 7u);
}

TEST (timecode2, drop_frame_is_kept_where_the_rate_has_it) {
  for (uint32_t rate = 0; rate < 9; ++rate) {
    EXPECT_EQ (timecode2 (rate, true, 0).is_dropframe (), rate == 1 || rate == 5) << rate;
    EXPECT_EQ (timecode2 (rate, 0).is_dropframe (), rate == 1 || rate == 5) << rate;
    EXPECT_FALSE (timecode2 (rate, false, 0).is_dropframe ()) << rate;
  }
}

TEST (timecode2, clear_gives_the_default_value) {
  timecode2 position (5, true, 7);
  position.clear ();
  EXPECT_FALSE (position.is_defined ());
  EXPECT_FALSE (position.is_dropframe ());
  EXPECT_EQ (position.count (), 0u);
  EXPECT_TRUE (position == timecode2 ());
}

TEST (timecode2, parts_of_plain_counting) {
  EXPECT_EQ (parts (timecode2 (0, 5184000)), Parts (1, 0, 0, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (0, 5183999)), Parts (0, 23, 59, 59, 29, true));
  EXPECT_EQ (parts (timecode2 (1, false, 3600)), Parts (0, 0, 1, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (2, 4320000 + 180000 + 3000 + 50 + 3)), Parts (1, 1, 1, 1, 1, true));
  EXPECT_EQ (parts (timecode2 (4, 30 + 29)), Parts (0, 0, 0, 1, 14, true));
  EXPECT_EQ (parts (timecode2 (5, false, 1800)), Parts (0, 0, 1, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (6, 25 * 61 + 24)), Parts (0, 0, 1, 1, 12, false));
  EXPECT_EQ (parts (timecode2 (7, 24 * 3600)), Parts (0, 1, 0, 0, 0, false));
  // Rate 7 is taken apart by days of 24 hours, although its day wraps elsewhere.
  EXPECT_EQ (parts (timecode2 (7, 2160000)), Parts (1, 1, 0, 0, 0, false));
}

TEST (timecode2, rate_3_is_taken_apart_at_50) {
  EXPECT_EQ (parts (timecode2 (3, 48)), Parts (0, 0, 0, 0, 24, false));
  EXPECT_EQ (parts (timecode2 (3, 50)), Parts (0, 0, 0, 1, 0, false));
  EXPECT_EQ (parts (timecode2 (3, 4320000)), Parts (1, 0, 0, 0, 0, false));
}

TEST (timecode2, parts_of_drop_frame_counting_at_59_94) {
  EXPECT_EQ (parts (timecode2 (1, 3599)), Parts (0, 0, 0, 59, 29, true));
  EXPECT_EQ (parts (timecode2 (1, 3600)), Parts (0, 0, 1, 0, 2, false));
  EXPECT_EQ (parts (timecode2 (1, 3600 + 3595)), Parts (0, 0, 1, 59, 29, true));
  EXPECT_EQ (parts (timecode2 (1, 3600 + 3596)), Parts (0, 0, 2, 0, 2, false));
  EXPECT_EQ (parts (timecode2 (1, 35963)), Parts (0, 0, 9, 59, 29, true));
  EXPECT_EQ (parts (timecode2 (1, 35964)), Parts (0, 0, 10, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (1, 215784)), Parts (0, 1, 0, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (1, 5178816)), Parts (1, 0, 0, 0, 0, false));
}

// A minute of this rate is two fields short, and yet its positions count on from field 4.
TEST (timecode2, parts_of_drop_frame_counting_at_29_97) {
  EXPECT_EQ (parts (timecode2 (5, 1799)), Parts (0, 0, 0, 59, 14, true));
  EXPECT_EQ (parts (timecode2 (5, 1800)), Parts (0, 0, 1, 0, 2, false));
  EXPECT_EQ (parts (timecode2 (5, 1800 + 1797)), Parts (0, 0, 1, 60, 0, true));
  EXPECT_EQ (parts (timecode2 (5, 17982)), Parts (0, 0, 10, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (5, 107892)), Parts (0, 1, 0, 0, 0, false));
  EXPECT_EQ (parts (timecode2 (5, 2589408)), Parts (1, 0, 0, 0, 0, false));
}

TEST (timecode2, changes) {
  timecode2 position (2, 10);
  EXPECT_EQ (position.frames (), 5u);
  position.set_count (12);
  EXPECT_EQ (position.frames (), 6u);
  position.increment ();
  EXPECT_EQ (position.count (), 13u);
  EXPECT_TRUE (position.is_odd_field ());
  position.add (UINT32_MAX);
  EXPECT_EQ (position.count (), 12u);
  position.add (timecode2 (7, 100)); // rates are not compared
  EXPECT_EQ (position.count (), 112u);
  EXPECT_EQ (position.plus (8).count (), 120u);
  EXPECT_EQ (position.plus (timecode2 (0, 1)).count (), 113u);
  EXPECT_EQ (position.count (), 112u);
  EXPECT_FALSE (position.plus (timecode2 ()).is_defined ());
  position.subtract (timecode2 (0, 12), false);
  EXPECT_EQ (position.count (), 100u);
  position.add (timecode2 ());
  EXPECT_FALSE (position.is_defined ());
}

TEST (timecode2, an_undefined_value_does_not_change) {
  timecode2 nothing;
  nothing.set_count (5);
  nothing.increment ();
  nothing.add (7);
  nothing.add (timecode2 (1, 3));
  nothing.subtract (1, true);
  nothing.subtract (timecode2 (1, 3), false);
  nothing.normalise ();
  EXPECT_FALSE (nothing.is_defined ());
  EXPECT_EQ (nothing.count (), 0u);
}

TEST (timecode2, subtract_of_an_undefined_value_clears) {
  timecode2 position (2, 10);
  position.subtract (timecode2 (), true);
  EXPECT_FALSE (position.is_defined ());
}

TEST (timecode2, subtract_wraps_within_the_day_or_at_32_bits) {
  const auto difference = [] (uint32_t from, uint32_t n, bool wrap) {
    timecode2 position (2, from);
    position.subtract (n, wrap);
    return position.count ();
  };
  EXPECT_EQ (difference (0, 1, true), 4319999u);
  EXPECT_EQ (difference (0, 1, false), 4294967295u);
  EXPECT_EQ (difference (10, 3, true), 7u);
  EXPECT_EQ (difference (4320010, 3, true), 7u); // whole days go first
  EXPECT_EQ (difference (5, 4320003, true), 2u); // and those of what is taken off
  EXPECT_EQ (difference (5, 4320007, true), 4319998u);
  EXPECT_EQ (difference (4320010, 3, false), 4320007u);
}

TEST (timecode2, normalise_uses_the_day_of_the_table) {
  const auto normal = [] (uint32_t rate, bool dropframe, uint32_t count) {
    timecode2 position (rate, dropframe, count);
    position.normalise ();
    return position.count ();
  };
  EXPECT_EQ (normal (0, false, 5184001), 1u);
  EXPECT_EQ (normal (1, true, 5178817), 1u);
  EXPECT_EQ (normal (1, false, 5178817), 5178817u);
  EXPECT_EQ (normal (3, false, 4320001), 1u);
  EXPECT_EQ (normal (5, true, 2589409), 1u);
  EXPECT_EQ (normal (7, false, 2160001), 1u);
}

TEST (timecode2, comparison) {
  const timecode2 nothing;
  const timecode2 early (2, 1);
  const timecode2 late (2, 2);
  EXPECT_TRUE (nothing < early);
  EXPECT_FALSE (early < nothing);
  EXPECT_TRUE (nothing == timecode2 ());
  EXPECT_TRUE (early < late);
  EXPECT_TRUE (late > early);
  EXPECT_TRUE (early <= late);
  EXPECT_TRUE (early <= early);
  EXPECT_FALSE (late <= early);
  EXPECT_TRUE (late >= early);
  EXPECT_TRUE (early != late);
  EXPECT_FALSE (early == late);
  EXPECT_TRUE (timecode2 (3, 0) > late); // rates first
  EXPECT_TRUE (timecode2 (1, true, 9) == timecode2 (1, false, 9));
}

TEST (timecode2, text_separators) {
  const uint32_t even = 216000 + 2 * 3600 + 3 * 60 + 8;
  EXPECT_EQ (text (timecode2 (1, false, even), 0), "01.02.03.04");
  EXPECT_EQ (text (timecode2 (1, false, even + 1), 0), "01:02:03:04");
  const uint32_t drop = timecode2::count_from_time (1, true, false, 1, 2, 3, 4);
  EXPECT_EQ (text (timecode2 (1, true, drop), 0), "01,02,03,04");
  EXPECT_EQ (text (timecode2 (1, true, drop + 1), 0), "01;02;03;04");
  EXPECT_EQ (text (timecode2 (1, false, 2 * 5184000 + even + 1), 0), "2+01:02:03:04");
}

TEST (timecode2, text_parts) {
  const timecode2 zero (0, 0);
  EXPECT_EQ (text (zero, 0), "");
  EXPECT_EQ (text (zero, 1), "00");
  EXPECT_EQ (text (zero, 2), "00.00");
  EXPECT_EQ (text (zero, 4), "00.00.00.00");
  EXPECT_EQ (text (zero, 5), "0+00.00.00.00");
  EXPECT_EQ (text (zero, 99), "0+00.00.00.00");
  EXPECT_EQ (text (timecode2 (0, 3 * 60 + 9), 0), "03:04");
  EXPECT_EQ (text (timecode2 (0, 3 * 60), 0), "03.00");
  EXPECT_EQ (text (timecode2 (0, 3600), 0), "01.00.00");
  EXPECT_EQ (text (timecode2 (0, 216000), 0), "01.00.00.00");
  EXPECT_EQ (text (timecode2 (0, 5184000), 0), "1+00.00.00.00");
  EXPECT_EQ (text (timecode2 (7, UINT32_MAX), 0), "2071+06:16:10:07");
}

TEST (timecode2, text_into_a_buffer) {
  const timecode2 position (0, 3 * 60 + 9);
  char buffer[8] = "xxxxxxx";
  position.to_text (0, buffer, 0);
  EXPECT_STREQ (buffer, "xxxxxxx");
  position.to_text (0, buffer, 1);
  EXPECT_STREQ (buffer, "");
  position.to_text (0, buffer, 4);
  EXPECT_STREQ (buffer, "03:");
  position.to_text (0, buffer, sizeof buffer);
  EXPECT_STREQ (buffer, "03:04");
}

TEST (timecode2, count_from_time) {
  EXPECT_EQ (timecode2::count_from_time (0, false, true, 1, 2, 3, 4), 216000u + 7200 + 180 + 8 + 1);
  EXPECT_EQ (timecode2::count_from_time (1, true, false, 1, 12, 3, 4), 215784u + 35964 + 2 * 3596 + 180 + 8);
  EXPECT_EQ (timecode2::count_from_time (1, false, false, 1, 12, 3, 4), 216000u + 36000 + 7200 + 180 + 8);
  EXPECT_EQ (timecode2::count_from_time (5, true, false, 0, 11, 0, 2), 17982u + 1798 + 4);
}

struct Day {
  uint32_t rate;
  bool dropframe;
  uint32_t fields; ///< in 24 hours of the clock
};

class RoundTrip : public testing::TestWithParam<Day> {};

// Every field of a day comes back, at the rates that are taken apart as they are put together.
TEST_P (RoundTrip, OverADay) {
  const Day day = GetParam ();
  timecode2 position (day.rate, day.dropframe, 0);
  uint32_t wrong = 0;
  for (uint32_t count = 0; count != day.fields; ++count) {
    position.set_count (count);
    wrong +=
        timecode2::count_from_time (day.rate, day.dropframe, position.is_odd_field (), position.hours (),
                                    position.minutes (), position.seconds (), position.frames ()) != count;
  }
  EXPECT_EQ (wrong, 0u);
}

INSTANTIATE_TEST_SUITE_P (timecode2, RoundTrip,
                          testing::Values (Day{0, false, 5184000}, Day{1, false, 5184000},
                                           Day{1, true, 5178816}, Day{2, false, 4320000},
                                           Day{4, false, 2592000}, Day{5, false, 2592000},
                                           Day{6, false, 2160000}, Day{7, false, 2073600}));

} // namespace
