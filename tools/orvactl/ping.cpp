// ping: how long a server takes to answer.
#include "session.h"
#include "terminal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace orvactl {

namespace {

std::string milliseconds_text (double value) {
  char text[32];
  std::snprintf (text, sizeof text, "%.3f", value);
  return text;
}

struct Statistics {
  std::size_t sent = 0;
  std::vector<double> times; ///< milliseconds, of each that was answered

  double least () const { return times.empty () ? 0 : *std::min_element (times.begin (), times.end ()); }
  double most () const { return times.empty () ? 0 : *std::max_element (times.begin (), times.end ()); }
  double mean () const {
    return times.empty ()
               ? 0
               : std::accumulate (times.begin (), times.end (), 0.0) / static_cast<double> (times.size ());
  }
  /// The standard deviation.
  double spread () const {
    double sum = 0;
    for (const double each : times)
      sum += (each - mean ()) * (each - mean ());
    return times.empty () ? 0 : std::sqrt (sum / static_cast<double> (times.size ()));
  }
  std::size_t lost_percent () const { return sent == 0 ? 0 : (sent - times.size ()) * 100 / sent; }
};

/// Asks once. @return what went wrong, if anything
std::optional<orva::Failure> ping_once (Session &session, Statistics &statistics) {
  session.clock ().restart ();
  const std::string &label = session.link ().label ();
  const std::size_t number = ++statistics.sent;
  const auto before = std::chrono::steady_clock::now ();
  const auto answer = session.link ().server ().nothrow ().within (session.clock ().limit ()).name ();
  const double time =
      std::chrono::duration<double, std::milli> (std::chrono::steady_clock::now () - before).count ();
  Json json = {{"server", label}, {"seq", number}};
  if (answer || answer.failure ().kind == orva::Kind::refused) {
    statistics.times.push_back (time);
    json["time_ms"] = time;
    session.out ().event (json, "answer from " + shown (label) + ": seq=" + std::to_string (number) +
                                    " time=" + milliseconds_text (time) + " ms");
    return {};
  }
  json["error"] = word_of (exit_of (answer.failure ().kind));
  session.out ().event (json, "no answer from " + shown (label) + ": seq=" + std::to_string (number) + " " +
                                  answer.failure ().text);
  return answer.failure ();
}

void print (Session &session, const Statistics &all) {
  Output &out = session.out ();
  if (out.json ()) {
    out.object ({{"sent", all.sent},
                 {"answered", all.times.size ()},
                 {"lost_percent", all.lost_percent ()},
                 {"min_ms", all.least ()},
                 {"avg_ms", all.mean ()},
                 {"max_ms", all.most ()},
                 {"mdev_ms", all.spread ()}});
    return;
  }
  out.line ("");
  out.line ("--- " + shown (session.link ().label ()) + " ping statistics ---");
  out.line (std::to_string (all.sent) + " sent, " + std::to_string (all.times.size ()) + " answered, " +
            std::to_string (all.lost_percent ()) + "% lost");
  if (!all.times.empty ())
    out.line ("min/avg/max/mdev = " + milliseconds_text (all.least ()) + "/" +
              milliseconds_text (all.mean ()) + "/" + milliseconds_text (all.most ()) + "/" +
              milliseconds_text (all.spread ()) + " ms");
}

Exit ping (Session &session, const Arguments &arguments) {
  const orva::Limit interval = arguments.time_or ("--interval", std::chrono::seconds (1));
  const std::uint64_t count = arguments.has ("--count") ? arguments.count ("--count") : 0;
  session.link ().connect ();
  catch_interrupts ();
  Statistics statistics;
  Exit status = Exit::timed_out;
  while (!interrupted ()) {
    if (const auto failure = ping_once (session, statistics))
      status = exit_of (failure->kind);
    if (count != 0 && statistics.sent == count)
      break;
    pause_for (interval);
  }
  print (session, statistics);
  return statistics.times.empty () ? status : Exit::done;
}

} // namespace

Family ping_commands () {
  return {{"ping",
           "measure how long the server takes to answer, until Ctrl-C",
           {{"--count", Takes::count, "end after so many"},
            {"--interval", Takes::time, "time between two; 1s by default"}},
           "orvactl ping --count 5",
           ping}};
}

} // namespace orvactl
