#pragma once

#include "base/astring.h"

#include <cstddef>
#include <cstdint>

/// A position in time, counted in fields since midnight at one of eight rates, with optional drop-frame
/// counting. A plain value that allocates nothing but the text it is asked for. It belongs to one thread:
/// reading fills a cache.
///
/// Rates: 0 is 60 fields a second, 1 is 59.94, 2 is 50, 3 is 48, 4 is 30, 5 is 29.97, 6 is 25, 7 is 24. Only
/// 1 and 5 have drop-frame counting.
///
/// Three values do not follow from the rate: a day of rate 3 is as long as one of rate 2, a day of rate 7 as
/// one of rate 6, and rate 3 is taken apart at 50 fields a second.
// C74: doc/compatibility.md
class timecode2 {
public:
  /// Undefined, rate 1, count 0.
  timecode2 () = default;
  /// Defined. @param dropframe kept for rates 1 and 5 only. @param count fields since midnight.
  timecode2 (uint32_t rate, bool dropframe, uint32_t count);
  /// Defined, with drop-frame counting where the rate has it.
  timecode2 (uint32_t rate, uint32_t count);

  /// Becomes the default value.
  void clear ();

  bool is_defined () const { return defined_; }
  uint32_t count () const { return count_; }
  bool is_dropframe () const { return dropframe_; }

  /// The parts of the position. For an undefined value they fail an assertion and return the part as it was
  /// last computed.
  uint32_t days () const { return part (days_); }
  uint32_t hours () const { return part (hours_); }
  uint32_t minutes () const { return part (minutes_); }
  uint32_t seconds () const { return part (seconds_); }
  uint32_t frames () const { return part (frames_); }
  /// Whether the position is the second field of its frame. An undefined value fails an assertion and returns
  /// bit 0 of the count.
  bool is_odd_field () const;

  /// The changes below do nothing to an undefined value, except where they say otherwise. Counts wrap at
  /// 2^32.
  void set_count (uint32_t n);
  void increment () { add (1); }
  void add (uint32_t n);
  /// Adds the count of @p other, whatever its rate; an undefined @p other clears this value.
  void add (const timecode2 &other);
  timecode2 plus (uint32_t n) const;
  timecode2 plus (const timecode2 &other) const;
  /// @param wrap the result stays within a day; otherwise the subtraction wraps at 2^32
  void subtract (uint32_t n, bool wrap);
  /// Subtracts the count of @p other, whatever its rate; an undefined @p other clears this value.
  void subtract (const timecode2 &other, bool wrap);
  /// Removes whole days.
  void normalise ();

  /// An undefined value is less than any defined one. Of two defined values the one with the higher rate is
  /// greater; at equal rates it is the one with the higher count. Drop-frame counting makes no difference.
  // C75: doc/compatibility.md
  static bool greater (const timecode2 &a, const timecode2 &b);
  friend bool operator<(const timecode2 &a, const timecode2 &b) { return greater (b, a); }
  friend bool operator> (const timecode2 &a, const timecode2 &b) { return greater (a, b); }
  friend bool operator<= (const timecode2 &a, const timecode2 &b) { return !greater (a, b); }
  friend bool operator>= (const timecode2 &a, const timecode2 &b) { return !greater (b, a); }
  friend bool operator!= (const timecode2 &a, const timecode2 &b) { return greater (a, b) || greater (b, a); }
  friend bool operator== (const timecode2 &a, const timecode2 &b) { return !(a != b); }

  /// The position as text. The parts are days, hours, minutes, seconds and frames. Leading parts that are 0
  /// are left out, but at least @p minimum_parts of them (0 to 5) are written. The separator is `:` for an
  /// odd field and `.` for an even one, with drop-frame counting `;` and `,`. Behind the days it is `+`. An
  /// undefined value fails an assertion and returns the empty text.
  AString to_text (uint32_t minimum_parts) const;
  /// The same into a buffer of @p capacity bytes, cut to fit and always terminated. A capacity of 0 writes
  /// nothing.
  void to_text (uint32_t minimum_parts, char *buffer, size_t capacity) const;

  /// The count of a clock value. At rate 5 with drop-frame counting it is not the inverse of the parts above.
  static uint32_t count_from_time (uint32_t rate, bool dropframe, bool odd_field, uint32_t hours,
                                   uint32_t minutes, uint32_t seconds, uint32_t frames);

  static uint32_t fields_per_second (uint32_t rate, bool dropframe);
  static uint32_t fields_per_minute (uint32_t rate, bool dropframe);
  static uint32_t fields_per_ten_minutes (uint32_t rate, bool dropframe);
  static uint32_t fields_per_hour (uint32_t rate, bool dropframe);
  static uint32_t fields_per_day (uint32_t rate, bool dropframe);

private:
  uint32_t part (const uint32_t &cached) const;
  void update_cache () const;
  void decode_plain () const;
  void decode_dropframe () const;
  uint32_t part_value (uint32_t number) const;
  /// Writes the text into @p text, which has room for any position. @return its length.
  size_t write_text (uint32_t minimum_parts, char *text) const;

  bool defined_ = false;
  uint32_t rate_ = 1;
  bool dropframe_ = false;
  uint32_t count_ = 0;
  mutable bool cache_valid_ = false;
  mutable uint32_t days_ = 0;
  mutable uint32_t hours_ = 0;
  mutable uint32_t minutes_ = 0;
  mutable uint32_t seconds_ = 0;
  mutable uint32_t field_ = 0;
  mutable uint32_t frames_ = 0;
  mutable bool odd_field_ = false;
};
