#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Times, medians and the table.
namespace figures {

using Clock = std::chrono::steady_clock;

inline double seconds_since (Clock::time_point begin) {
  return std::chrono::duration<double> (Clock::now () - begin).count ();
}

/// How many seconds a call takes.
template <class Call>
double seconds_of (Call call) {
  const Clock::time_point begin = Clock::now ();
  call ();
  return seconds_since (begin);
}

/// @param part 0.5 for the median, 0.99 for the 99th percentile
double at_part (std::vector<double> values, double part);

/// A row of the table. The values are of one run each.
struct Figure {
  const char *name;
  double required; ///< 0 where none is
  double aim;
  bool more_is_better;
  std::vector<double> values{};
};

/// Gives a figure of the run in hand to the parent process.
void note (const char *name, double value);

/// Runs a group of figures in a process of its own and adds what it notes to the table. A name that the table
/// lacks gets a row without requirements.
void run_apart (std::vector<Figure> &table, const std::function<void ()> &group);

/// Prints the medians as a table.
void print (const std::vector<Figure> &table);

/// Resident memory of this process, in bytes.
double resident_bytes ();

} // namespace figures
