// info and channels: what servers are and what their channels do at this moment.
#include "views.h"

namespace orvactl {

namespace {

/// Does the same for each server. A server that fails does not keep the others from being shown.
/// @return the status of the last one that failed
template <class Show>
Exit for_each_link (Session &session, Show show) {
  Exit status = Exit::done;
  for (Link &link : session.links ()) {
    try {
      show (link);
    } catch (const Problem &problem) {
      status = problem.status ();
      session.complain (status, problem.what ());
    } catch (const orva::error &error) {
      status = exit_of (error.kind ());
      session.complain (status, link.label () + ": " + error.what ());
    }
  }
  return status;
}

struct ServerFacts {
  std::string name;
  orva::Video video;
  orva::Disk disk;
  orva::DiskTime time;
};

Json facts_json (const ServerFacts &facts, Link &link) {
  const orva::Timebase base = facts.video.timebase ();
  return {{"server", link.label ()},
          {"address", link.server ().address ().text ()},
          {"name", facts.name},
          {"standard", word_for (standard_words, facts.video.standard)},
          {"rate", word_for (rate_words, facts.video.rate)},
          {"resolution", word_for (resolution_words, facts.video.resolution)},
          {"certain", facts.video.rate_certain ()},
          {"disk",
           {{"total", facts.disk.total},
            {"available", facts.disk.available},
            {"field_size", facts.disk.field_size},
            {"total_time", json_of (facts.time.total, base)},
            {"available_time", json_of (facts.time.available, base)}}}};
}

int percent_free (const orva::Disk &disk) {
  return disk.total == 0 ? 0
                         : static_cast<int> (100.0 * static_cast<double> (disk.available) /
                                             static_cast<double> (disk.total));
}

void print (Output &out, const ServerFacts &facts, Link &link) {
  const orva::Timebase base = facts.video.timebase ();
  const std::string doubt = facts.video.standard_certain () ? "" : " (not certain)";
  out.line ("address     " + link.server ().address ().text ());
  out.line ("name        " + name_text (facts.name));
  out.line ("standard    " + std::string (word_for (standard_words, facts.video.standard)) + doubt);
  out.line ("rate        " + std::string (word_for (rate_words, facts.video.rate)) + " fields a second");
  out.line ("resolution  " + std::string (word_for (resolution_words, facts.video.resolution)));
  out.line ("disk        " + std::to_string (percent_free (facts.disk)) +
            " % free: " + facts.time.available.text (base) + " of " + facts.time.total.text (base));
}

Exit info (Session &session, const Arguments &) {
  Output &out = session.out ();
  bool first = true;
  return for_each_link (session, [&] (Link &link) {
    const auto ask = link.ask ();
    const ServerFacts facts = {ask.name (), link.video (), ask.disk (), ask.disk_time ()};
    if (out.json ()) {
      out.object (facts_json (facts, link));
      return;
    }
    if (!first)
      out.line ("");
    first = false;
    print (out, facts, link);
  });
}

Exit channels (Session &session, const Arguments &arguments) {
  const orva::Channels wanted =
      arguments.has ("CHANNELS") ? arguments.channels ("CHANNELS") : orva::Channels::all ();
  const bool many = session.links ().size () > 1;
  std::vector<std::vector<Cell>> rows;
  List list (session.out ());
  const Exit status = for_each_link (session, [&] (Link &link) {
    const orva::Timebase base = link.base ();
    for (const auto &[channel, state] : states_of (link, wanted)) {
      Json json = json_of (state, channel, base);
      json["server"] = link.label ();
      if (session.out ().json ()) {
        list.add (json, "");
        continue;
      }
      rows.push_back (channel_row (state, channel, base));
      if (many)
        rows.back ().insert (rows.back ().begin (), Cell{shown (link.label ())});
    }
  });
  if (session.out ().json ())
    list.end ();
  else if (!rows.empty ())
    session.out ().table (channel_heading (many), rows);
  return status;
}

} // namespace

Family state_commands () {
  return {{"info",
           "what a server is: its name, video standard and disk space",
           {},
           "orvactl --server 10.0.0.5 info",
           info,
           Servers::many},
          {"channels",
           "what channels do: clip, status, position and more",
           {{"CHANNELS", Takes::channels, "which ones; all by default", Need::optional}},
           "orvactl --server 10.0.0.5 channels A,C-E",
           channels,
           Servers::many}};
}

} // namespace orvactl
