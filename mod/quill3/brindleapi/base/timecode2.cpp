#include "base/timecode2.h"

#include "base/kelvane_assert.h"

#include <algorithm>
#include <charconv>
#include <climits>

namespace {

/// The lengths of one rate and counting, in fields.
struct RateConstants {
  uint32_t second, minute, ten_minutes, hour, day;
};

constexpr uint32_t rate_count = 8;

// The days of rates 3 and 7 are those of rates 2 and 6: callers count on where they wrap.
constexpr RateConstants plain_constants[rate_count] = {
    {60, 3600, 36000, 216000, 5184000}, {60, 3600, 36000, 216000, 5184000},
    {50, 3000, 30000, 180000, 4320000}, {48, 2880, 28800, 172800, 4320000},
    {30, 1800, 18000, 108000, 2592000}, {30, 1800, 18000, 108000, 2592000},
    {25, 1500, 15000, 90000, 2160000},  {24, 1440, 14400, 86400, 2160000},
};
constexpr RateConstants dropframe_59_94 = {60, 3596, 35964, 215784, 5178816};
constexpr RateConstants dropframe_29_97 = {30, 1798, 17982, 107892, 2589408};

const RateConstants &constants (uint32_t rate, bool dropframe) {
  if (rate >= rate_count) {
    KELVANE_ASSERT (0);
    return dropframe_59_94;
  }
  if (dropframe && rate == 1)
    return dropframe_59_94;
  if (dropframe && rate == 5)
    return dropframe_29_97;
  return plain_constants[rate];
}

// The fields of a second when a position is split into parts. Rate 3 is taken apart at 50 and always was:
// callers count on it.
uint32_t decoding_fields_per_second (uint32_t rate) {
  constexpr uint32_t divisors[rate_count] = {60, 60, 50, 50, 30, 30, 25, 24};
  return rate < rate_count ? divisors[rate] : divisors[1];
}

bool has_dropframe (uint32_t rate) {
  return rate == 1 || rate == 5;
}

constexpr uint32_t frames_part = 1;
constexpr uint32_t hours_part = 4;
constexpr uint32_t days_part = 5;

/// Five parts of at most ten digits, and four separators.
constexpr size_t longest_text = 54;

char *write_number (char *at, uint32_t value, bool two_digits) {
  if (two_digits && value < 10)
    *at++ = '0';
  return std::to_chars (at, at + 10, value).ptr;
}

} // namespace

timecode2::timecode2 (uint32_t rate, bool dropframe, uint32_t count)
    : defined_ (true), rate_ (rate), dropframe_ (dropframe && has_dropframe (rate)), count_ (count) {}

timecode2::timecode2 (uint32_t rate, uint32_t count) : timecode2 (rate, true, count) {}

void timecode2::clear () {
  *this = timecode2 ();
}

uint32_t timecode2::part (const uint32_t &cached) const {
  update_cache ();
  KELVANE_ASSERT (cache_valid_);
  return cached;
}

bool timecode2::is_odd_field () const {
  update_cache ();
  KELVANE_ASSERT (defined_);
  return cache_valid_ ? odd_field_ : (count_ & 1) != 0;
}

void timecode2::set_count (uint32_t n) {
  if (!defined_ || n == count_)
    return;
  cache_valid_ = false;
  count_ = n;
}

void timecode2::add (uint32_t n) {
  set_count (count_ + n);
}

void timecode2::add (const timecode2 &other) {
  if (!defined_)
    return;
  if (other.defined_)
    add (other.count_);
  else
    clear ();
}

timecode2 timecode2::plus (uint32_t n) const {
  timecode2 sum = *this;
  sum.add (n);
  return sum;
}

timecode2 timecode2::plus (const timecode2 &other) const {
  timecode2 sum = *this;
  sum.add (other);
  return sum;
}

void timecode2::subtract (uint32_t n, bool wrap) {
  if (!defined_)
    return;
  uint32_t from = count_;
  if (wrap) {
    normalise ();
    from = count_;
    const uint32_t day = fields_per_day (rate_, dropframe_);
    if (n > from)
      n %= day;
    if (n > from)
      from += day;
  }
  set_count (from - n);
}

void timecode2::subtract (const timecode2 &other, bool wrap) {
  if (!defined_)
    return;
  if (other.defined_)
    subtract (other.count_, wrap);
  else
    clear ();
}

void timecode2::normalise () {
  if (defined_)
    set_count (count_ % fields_per_day (rate_, dropframe_));
}

bool timecode2::greater (const timecode2 &a, const timecode2 &b) {
  if (a.defined_ != b.defined_)
    return a.defined_;
  return a.rate_ == b.rate_ ? a.count_ > b.count_ : a.rate_ > b.rate_;
}

void timecode2::update_cache () const {
  if (!defined_)
    cache_valid_ = false;
  if (!defined_ || cache_valid_)
    return;
  if (dropframe_)
    decode_dropframe ();
  else
    decode_plain ();
  frames_ = field_ / 2;
  odd_field_ = (field_ & 1) != 0;
  cache_valid_ = true;
}

void timecode2::decode_plain () const {
  const uint32_t second = decoding_fields_per_second (rate_);
  field_ = count_ % second;
  const uint32_t t = count_ / second;
  seconds_ = t % 60;
  minutes_ = t / 60 % 60;
  hours_ = t / 3600 % 24;
  days_ = t / 86400;
}

// Each of the nine minutes after a tenth minute lacks its first fields. Both rates count on from field 4
// there, although a minute of rate 5 is only two fields short; it always was so, and callers count on it.
void timecode2::decode_dropframe () const {
  const RateConstants &lengths = constants (rate_, true);
  const uint32_t full_minute = lengths.second * 60;
  days_ = count_ / lengths.day;
  hours_ = count_ / lengths.hour % 24;
  minutes_ = count_ % lengths.hour / lengths.ten_minutes * 10;
  uint32_t rest = count_ % lengths.hour % lengths.ten_minutes;
  if (rest >= full_minute) {
    rest -= full_minute;
    minutes_ += rest / lengths.minute + 1;
    rest = rest % lengths.minute + 4;
  }
  seconds_ = rest / lengths.second;
  field_ = rest % lengths.second;
}

uint32_t timecode2::part_value (uint32_t number) const {
  switch (number) {
  case 1:
    return frames_;
  case 2:
    return seconds_;
  case 3:
    return minutes_;
  case 4:
    return hours_;
  case 5:
    return days_;
  default:
    return UINT_MAX;
  }
}

size_t timecode2::write_text (uint32_t minimum_parts, char *text) const {
  if (!KELVANE_ASSERT (defined_))
    return 0;
  update_cache ();
  uint32_t parts = minimum_parts;
  for (uint32_t number = days_part; number >= frames_part; --number)
    if (part_value (number) != 0)
      parts = std::max (parts, number);
  parts = std::min (parts, days_part);

  const char separator = dropframe_ ? (odd_field_ ? ';' : ',') : (odd_field_ ? ':' : '.');
  char *at = text;
  for (uint32_t number = parts; number >= frames_part; --number) {
    const uint32_t val = part_value (number);
    if (!KELVANE_ASSERT (val != UINT_MAX))
      break;
    if (number != parts)
      *at++ = number == hours_part ? '+' : separator;
    at = write_number (at, val, number != days_part);
  }
  return static_cast<size_t> (at - text);
}

AString timecode2::to_text (uint32_t minimum_parts) const {
  char text[longest_text];
  return AString::from_latin1 (text, write_text (minimum_parts, text));
}

void timecode2::to_text (uint32_t minimum_parts, char *buffer, size_t capacity) const {
  if (capacity == 0)
    return;
  char text[longest_text];
  const size_t length = std::min (write_text (minimum_parts, text), capacity - 1);
  std::copy_n (text, length, buffer);
  buffer[length] = 0;
}

uint32_t timecode2::count_from_time (uint32_t rate, bool dropframe, bool odd_field, uint32_t hours,
                                     uint32_t minutes, uint32_t seconds, uint32_t frames) {
  const RateConstants &lengths = constants (rate, dropframe);
  return (odd_field ? 1U : 0U) + frames * 2 + seconds * lengths.second + minutes / 10 * lengths.ten_minutes +
         minutes % 10 * lengths.minute + hours * lengths.hour;
}

uint32_t timecode2::fields_per_second (uint32_t rate, bool dropframe) {
  return constants (rate, dropframe).second;
}
uint32_t timecode2::fields_per_minute (uint32_t rate, bool dropframe) {
  return constants (rate, dropframe).minute;
}
uint32_t timecode2::fields_per_ten_minutes (uint32_t rate, bool dropframe) {
  return constants (rate, dropframe).ten_minutes;
}
uint32_t timecode2::fields_per_hour (uint32_t rate, bool dropframe) {
  return constants (rate, dropframe).hour;
}
uint32_t timecode2::fields_per_day (uint32_t rate, bool dropframe) {
  return constants (rate, dropframe).day;
}
