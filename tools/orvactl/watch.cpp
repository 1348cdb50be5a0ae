// watch and wait: what happens on servers, and waiting for a state of a channel.
#include "views.h"
#include "waiting.h"

#include <ctime>

namespace orvactl {

namespace {

using SystemTime = std::chrono::system_clock::time_point;

SystemTime time_of (const orva::Event &event) {
  const auto ago = std::chrono::steady_clock::now () - event.when;
  return std::chrono::system_clock::now () -
         std::chrono::duration_cast<std::chrono::system_clock::duration> (ago);
}

/// A time with milliseconds, by a format of strftime for its seconds.
std::string time_text (SystemTime time, const char *format, bool utc) {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds> (time.time_since_epoch ()).count ();
  const std::time_t seconds = ms / 1000;
  char text[64], all[80];
  const std::tm *const parts = utc ? std::gmtime (&seconds) : std::localtime (&seconds);
  std::strftime (text, sizeof text, format, parts);
  std::snprintf (all, sizeof all, "%s.%03d", text, static_cast<int> (ms % 1000));
  return all;
}

/// An event as a word, the members of its JSON object, and text.
struct Shown {
  std::string word;
  Json members = Json::object ();
  std::string text{};
};

Json channel_json (orva::Channel channel) {
  return {{"channel", std::string (1, channel.letter ())}};
}

/// Turns each kind of event into what is shown of it.
struct Show {
  orva::Timebase base;

  template <class Value>
  Shown of_channel (const char *word, orva::Channel channel, const Value &value,
                    const std::string &text) const {
    Shown shown{word, channel_json (channel), std::string (1, channel.letter ()) + " " + word + " " + text};
    shown.members[word] = value;
    return shown;
  }
  Shown of_name (const char *word, const char *member, const std::string &name) const {
    return {word, {{member, name}}, std::string (word) + " " + shown (name)};
  }

  Shown operator() (const orva::LinkUp &) const { return {"up", Json::object (), "up"}; }
  Shown operator() (const orva::LinkDown &) const { return {"down", Json::object (), "down"}; }
  Shown operator() (const orva::StatusChanged &e) const {
    const std::string word = word_for (status_words, e.status);
    return of_channel ("status", e.channel, word, word);
  }
  Shown operator() (const orva::ClipLoaded &e) const {
    return of_channel ("clip", e.channel, e.clip, name_text (e.clip));
  }
  Shown operator() (const orva::PositionChanged &e) const {
    return of_channel ("position", e.channel, json_of (e.position, base), e.position.text (base));
  }
  Shown operator() (const orva::SpeedChanged &e) const {
    return of_channel ("speed", e.channel, e.speed, speed_text (e.speed));
  }
  Shown operator() (const orva::LengthChanged &e) const {
    return of_channel ("length", e.channel, json_of (e.length, base), e.length.text (base));
  }
  Shown operator() (const orva::PrecuedChanged &e) const {
    return of_channel ("precued", e.channel, e.count, std::to_string (e.count));
  }
  Shown operator() (const orva::RepeatChanged &e) const {
    const std::string word = word_for (repeat_words, e.repeat);
    return of_channel ("repeat", e.channel, word, word);
  }
  Shown operator() (const orva::AngleChanged &e) const {
    Shown shown =
        of_channel ("angle", e.channel, e.angle, std::to_string (e.angle) + "/" + std::to_string (e.count));
    shown.members["angles"] = e.count;
    return shown;
  }
  Shown operator() (const orva::InputChanged &e) const {
    Shown shown =
        of_channel ("input", e.channel, set_text (edit_track_words, e.input.tracks), input_text (e.input));
    shown.members["input_mode"] = e.input.mode == orva::InputMode::manual ? "manual" : "automatic";
    return shown;
  }
  Shown operator() (const orva::ClipAdded &e) const { return of_name ("clip_added", "clip", e.clip); }
  Shown operator() (const orva::ClipDeleted &e) const { return of_name ("clip_deleted", "clip", e.clip); }
  Shown operator() (const orva::ClipEdited &e) const { return of_name ("clip_edited", "clip", e.clip); }
  Shown operator() (const orva::DirectoryAdded &e) const {
    return of_name ("directory_added", "directory", e.directory);
  }
  Shown operator() (const orva::DirectoryDeleted &e) const {
    return of_name ("directory_deleted", "directory", e.directory);
  }
  Shown operator() (const orva::Watching &) const { return {"watching", Json::object (), "watching"}; }
  Shown operator() (const orva::WatchFailed &e) const {
    return {"watch_failed",
            {{"what", e.what}, {"text", e.failure.text}},
            "watch_failed " + shown (e.what) + ": " + shown (e.failure.text)};
  }
};

Link &link_of (Session &session, const orva::Event &event) {
  for (Link &link : session.links ())
    if (link.server ().address () == event.server)
      return link;
  return session.link ();
}

void print (Session &session, const orva::Event &event) {
  Link &link = link_of (session, event);
  const Shown what = std::visit (Show{link.base ()}, event.what);
  const SystemTime time = time_of (event);
  Json json = {{"time", time_text (time, "%Y-%m-%dT%H:%M:%S", true) + "Z"},
               {"server", link.label ()},
               {"event", what.word}};
  json.update (what.members);
  session.out ().event (json,
                        time_text (time, "%H:%M:%S", false) + " " + shown (link.label ()) + " " + what.text);
}

/// Prints events until a time has passed or a condition of the first server holds.
class Watcher {
public:
  Watcher (Session &session, const Arguments &arguments) : session_ (session) {
    if (arguments.has ("--until")) {
      until_ = condition_of (session.link (), arguments.text ("--until"));
      states_of (session.link (), until_->channel); // from now on its state is known without asking
    }
    if (const auto time = arguments.time_if ("--for"))
      end_ = std::chrono::steady_clock::now () + *time;
    const orva::Channels channels =
        arguments.has ("CHANNELS") ? arguments.channels ("CHANNELS") : orva::Channels::all ();
    for (Link &link : session.links ())
      queue_.watch (link.server (), {.channels = channels, .positions = arguments.has ("--positions")});
  }

  Exit run () {
    for (;;) {
      if (const auto event = queue_.next (std::chrono::milliseconds (until_ ? 20 : 100)))
        print (session_, *event);
      if (until_ && reached ())
        return Exit::done;
      if (end_ && std::chrono::steady_clock::now () >= *end_) {
        if (until_)
          throw Problem (Exit::timed_out, "The condition has not been met.");
        return Exit::done;
      }
    }
  }

private:
  bool reached () {
    const auto state = session_.link ().server ().nothrow ().channel (until_->channel).state ();
    return state && state->age.count () == 0 && until_->holds (*state);
  }

  Session &session_;
  orva::EventQueue queue_;
  std::optional<Condition> until_;
  std::optional<std::chrono::steady_clock::time_point> end_;
};

Exit watch (Session &session, const Arguments &arguments) {
  for (Link &link : session.links ())
    link.base (); // connects, so that events need no question
  return Watcher (session, arguments).run ();
}

Exit wait (Session &session, const Arguments &arguments) {
  const Condition condition = condition_of (session.link (), arguments.text ("CONDITION"));
  const orva::ChannelState state = wait_for_state (session, condition.channel, condition.holds);
  if (session.out ().json ())
    session.out ().object (json_of (state, condition.channel, session.link ().base ()));
  return Exit::done;
}

} // namespace

Family watch_commands () {
  return {
      {"watch",
       "print what happens, a line for each event, beginning with the present",
       {{"CHANNELS", Takes::channels, "of these channels only", Need::optional},
        {"--positions", Takes::nothing, "positions of channels that move, too"},
        {"--for", Takes::time, "end after this time"},
        {"--until", Takes::condition,
         "end when a state is reached, such as 'A stopped'; with --for, not being reached is a time-out"}},
       "orvactl watch --until 'A stopped' --for 1m",
       watch,
       Servers::many},
      {"wait",
       "wait until a channel has a state, at most as long as --timeout says",
       {{"CONDITION", Takes::condition,
         "'A stopped' (or playing, recording, cueing, empty, loaded), 'A clip NAME' or 'A at POSITION'"}},
       "orvactl --timeout 30s wait 'A stopped'",
       wait}};
}

} // namespace orvactl
