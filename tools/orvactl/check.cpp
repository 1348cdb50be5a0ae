// check: the state of a server for monitoring systems, with performance data.
#include "session.h"

#include <cstdio>

namespace orvactl {

namespace {

enum class Health { ok = 0, warning = 1, critical = 2, unknown = 3 };

const char *word_for (Health health) {
  static const char *const words[] = {"OK", "WARNING", "CRITICAL", "UNKNOWN"};
  return words[static_cast<int> (health)];
}

struct Thresholds {
  double time_warning, time_critical; ///< seconds
  double disk_warning, disk_critical; ///< percent that is free
};

/// What was found out, and what is wrong with it.
class Report {
public:
  explicit Report (Session &session) : session_ (session) {}

  void worsen (Health health, const std::string &why) {
    health_ = std::max (health_, health);
    why_ += (why_.empty () ? "" : ", ") + why;
  }
  void add (const std::string &fact, Json value, const std::string &performance) {
    facts_[fact] = std::move (value);
    performance_ += (performance_.empty () ? "" : " ") + performance;
  }

  Exit print (const std::string &summary) {
    const std::string text = why_.empty () ? summary : why_;
    Json json = {{"state", word_for (health_)}, {"text", text}};
    json.update (facts_);
    session_.out ().one (json, std::string (word_for (health_)) + " - " + shown (text) +
                                   (performance_.empty () ? "" : " | " + performance_));
    return static_cast<Exit> (health_);
  }

private:
  Session &session_;
  Health health_ = Health::ok;
  std::string why_;
  Json facts_ = Json::object ();
  std::string performance_;
};

std::string number (const char *format, double value) {
  char text[64];
  std::snprintf (text, sizeof text, format, value);
  return text;
}

void check_time (Report &report, double seconds, const Thresholds &limits) {
  if (seconds >= limits.time_warning)
    report.worsen (seconds >= limits.time_critical ? Health::critical : Health::warning,
                   "it answers after " + number ("%.3f s", seconds));
  report.add ("time", seconds,
              "time=" + number ("%.6fs", seconds) + number (";%g", limits.time_warning) +
                  number (";%g", limits.time_critical) + ";0");
}

void check_disk (Report &report, const orva::Disk &disk, const Thresholds &limits) {
  const double free =
      disk.total == 0 ? 0 : 100.0 * static_cast<double> (disk.available) / static_cast<double> (disk.total);
  if (free < limits.disk_warning)
    report.worsen (free < limits.disk_critical ? Health::critical : Health::warning,
                   number ("%.1f %% of its disk is free", free));
  report.add ("disk_free", free,
              "disk_free=" + number ("%.1f%%", free) + number (";%g:", limits.disk_warning) +
                  number (";%g:", limits.disk_critical) + ";0;100");
}

void check_playing (Session &session, Report &report, orva::Channels channels) {
  for (const orva::Channel channel : channels) {
    const orva::ChannelState state = session.ask ().channel (channel).state ();
    if (state.status != orva::Status::playing)
      report.worsen (Health::critical, std::string ("channel ") + channel.letter () + " is " +
                                           orvactl::word_for (status_words, state.status));
  }
}

double seconds_of (orva::Limit time) {
  return std::chrono::duration<double> (time).count ();
}

Exit examine (Session &session, const Arguments &arguments, Report &report) {
  const Thresholds limits = {
      seconds_of (arguments.time_or ("--warning-time", std::chrono::milliseconds (500))),
      seconds_of (arguments.time_or ("--critical-time", std::chrono::seconds (2))),
      arguments.number_or ("--warning-disk", 20), arguments.number_or ("--critical-disk", 10)};
  session.link ().connect ();
  const auto before = std::chrono::steady_clock::now ();
  const std::string name = session.ask ().name ();
  check_time (report, seconds_of (std::chrono::steady_clock::now () - before), limits);
  check_disk (report, session.ask ().disk (), limits);
  if (arguments.has ("--playing"))
    check_playing (session, report, arguments.channels ("--playing"));
  return report.print (name + " is well");
}

Exit check (Session &session, const Arguments &arguments) {
  Report report (session);
  try {
    return examine (session, arguments, report);
  } catch (const Problem &problem) {
    report.worsen (Health::critical, problem.what ());
  } catch (const orva::error &error) {
    report.worsen (error.kind () == orva::Kind::internal ? Health::unknown : Health::critical, error.what ());
  }
  return report.print ("");
}

} // namespace

Family check_commands () {
  return {
      {"check",
       "check a server for a monitoring system; the exit status is 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN",
       {{"--warning-time", Takes::time, "warn when an answer takes this long; 500ms by default"},
        {"--critical-time", Takes::time, "critical when it takes this long; 2s by default"},
        {"--warning-disk", Takes::number, "warn when less percent of the disk is free; 20 by default"},
        {"--critical-disk", Takes::number, "critical when less percent is free; 10 by default"},
        {"--playing", Takes::channels, "critical unless all of these channels play"}},
       "orvactl --server 10.0.0.5 check --playing A,B --warning-disk 30",
       check}};
}

} // namespace orvactl
