#include "clock.h"

#include <algorithm>
#include <ctime>

namespace sim {

namespace {

using std::chrono::duration_cast;

constexpr std::int64_t most_at_once = 600; // fields

} // namespace

int Clock::take () {
  const std::int64_t total = due ();
  const std::int64_t fresh = total - taken_;
  taken_ = total;
  const auto most = static_cast<std::int64_t> (static_cast<double> (most_at_once) * std::max (rate_, 1.0));
  const std::int64_t passed = std::clamp<std::int64_t> (fresh, 0, most);
  before_ -= fresh - passed; // fields that are left out do not count
  return static_cast<int> (passed);
}

// The number of fields since the rate or the pause last changed.
std::int64_t Clock::due () const {
  if (paused_)
    return taken_;
  const auto real = duration_cast<std::chrono::microseconds> (Real::now () - since_).count ();
  return fields_in_microseconds (
      standard_, rate_ == 1 ? real : static_cast<std::int64_t> (static_cast<double> (real) * rate_));
}

std::optional<Clock::Real::time_point> Clock::next () const {
  if (paused_)
    return std::nullopt;
  const std::int64_t nanoseconds = nanoseconds_of_fields (standard_, taken_ + 1);
  return since_ + std::chrono::nanoseconds (
                      rate_ == 1 ? nanoseconds
                                 : static_cast<std::int64_t> (static_cast<double> (nanoseconds) / rate_));
}

void Clock::begin_anew () {
  before_ += taken_;
  taken_ = 0;
  since_ = Real::now ();
}

void Clock::pause (bool paused) {
  begin_anew ();
  paused_ = paused;
}

void Clock::set_rate (double rate) {
  begin_anew ();
  rate_ = rate;
}

std::int64_t Clock::milliseconds () const {
  if (start_)
    return *start_ + nanoseconds_of_fields (standard_, before_ + taken_ + stepped_) / 1'000'000;
  const auto now = std::chrono::system_clock::now ().time_since_epoch ();
  return duration_cast<std::chrono::milliseconds> (now).count ();
}

std::optional<std::int64_t> read_time (const std::string &text) {
  std::tm parts{};
  const char *end = ::strptime (text.c_str (), "%Y-%m-%dT%H:%M:%SZ", &parts);
  if (!end || *end != '\0')
    return std::nullopt;
  return static_cast<std::int64_t> (::timegm (&parts)) * 1000;
}

} // namespace sim
