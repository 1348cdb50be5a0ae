#include "standard.h"

namespace sim {

namespace {

struct Rate {
  std::string_view name;
  std::int64_t fields;
  std::int64_t seconds;
  bool drop_frame;
};
constexpr Rate rates[] = {
    {"60", 60, 1, false},          {"59_94", 60000, 1001, true},  {"50", 50, 1, false},
    {"48", 48, 1, false},          {"47_95", 48000, 1001, false}, {"30", 30, 1, false},
    {"29_97", 30000, 1001, true},  {"25", 25, 1, false},          {"24", 24, 1, false},
    {"23_98", 24000, 1001, false},
};

struct Row {
  std::string_view name;
  std::string_view rate;
  std::string_view resolution;
};
constexpr Row rows[] = {
    {"4K_60p", "60", "4K"},
    {"4K_59_94p", "59_94", "4K"},
    {"4K_50p", "50", "4K"},
    {"4K_30p", "30", "4K"},
    {"4K_29_97p", "29_97", "4K"},
    {"4K_25p", "25", "4K"},
    {"4K_24p", "24", "4K"},
    {"4K_23_98p", "23_98", "4K"},
    {"1080_60p", "60", "1080p"},
    {"1080_59_94p", "59_94", "1080p"},
    {"1080_50p", "50", "1080p"},
    {"1080_30p", "30", "1080p"},
    {"1080_29_97p", "29_97", "1080p"},
    {"1080_25p", "25", "1080p"},
    {"1080_24p", "24", "1080p"},
    {"1080_23_98p", "23_98", "1080p"},
    {"1080_23_98psf", "23_98", "1080p"},
    {"1080_60i", "60", "1080i"},
    {"1080_59_94i", "59_94", "1080i"},
    {"1080_50i", "50", "1080i"},
    {"1080_48i", "48", "1080i"},
    {"1080_47_95i", "47_95", "1080i"},
    {"720_60p", "60", "720p"},
    {"720_59_94p", "59_94", "720p"},
    {"720_50p", "50", "720p"},
    {"625_50i", "50", "625i"},
    {"525_59_94i", "59_94", "525i"},
};

constexpr Standard with_rate (const Row &row) {
  for (const Rate &rate : rates)
    if (rate.name == row.rate)
      return {row.name, row.rate, row.resolution, rate.fields, rate.seconds, rate.drop_frame};
  return {};
}

// An overflow in a constant expression does not compile, so these lines also check that the clock is right
// for years.
constexpr Standard odd = {"", "", "", 60000, 1001, true};
constexpr Standard even = {"", "", "", 50, 1, false};
static_assert (nanoseconds_of_fields (odd, 1) == 16'683'333);
static_assert (nanoseconds_of_fields (odd, 60'000) == 1'001'000'000'000);
static_assert (nanoseconds_of_fields (odd, 9'214'158) == 153'722'869'300'000);
static_assert (nanoseconds_of_fields (odd, 60'000ll * 9'000'000) == 9'009'000'000'000'000'000);
static_assert (nanoseconds_of_fields (even, 50ll * 9'000'000'000 + 1) == 9'000'000'000'020'000'000);
static_assert (fields_in_microseconds (odd, 16'683) == 0 && fields_in_microseconds (odd, 16'684) == 1);
static_assert (fields_in_microseconds (odd, 1'001'000'000) == 60'000);
static_assert (fields_in_microseconds (odd, 9'009'000'000'000'000) == 540'000'000'000);
static_assert (fields_in_microseconds (even, 9'000'000'000'020'000) == 450'000'000'001);

} // namespace

std::vector<std::string_view> standard_names () {
  std::vector<std::string_view> names;
  for (const Row &row : rows)
    names.push_back (row.name);
  return names;
}

std::optional<Standard> find_standard (std::string_view name) {
  for (const Row &row : rows)
    if (row.name == name)
      return with_rate (row);
  return std::nullopt;
}

} // namespace sim
