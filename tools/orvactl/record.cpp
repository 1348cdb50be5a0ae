// record: makes a clip, records, and undoes what it has set up.
#include "terminal.h"
#include "views.h"
#include "waiting.h"

namespace orvactl {

namespace {

/// A recording under way. What was begun is remembered, so that it can be undone.
class Recording {
public:
  Recording (Session &session, orva::Channel channel, std::string clip)
      : session_ (session), channel_ (channel), clip_ (std::move (clip)) {}

  /// Starts it. When a step fails, those before it are undone and the clip is deleted.
  void start (const orva::Create &how) {
    session_.ask ().clip (clip_).create (how);
    try {
      channel ().edit ();
      channel ().play (1.0);
      wait_for_state (session_, channel_,
                      [] (const auto &state) { return state.status == orva::Status::recording; });
    } catch (...) {
      undo ();
      throw;
    }
  }

  /// Stops the channel and ends the edit. The clip stays.
  void end () {
    session_.clock ().restart ();
    channel ().stop ();
    channel ().edit (orva::EditTracks::none);
  }

  /// Waits so long, or until it is interrupted, or until another has ended the recording.
  /// @return false when another has ended it
  bool wait (orva::Limit time) {
    const auto end = std::chrono::steady_clock::now () + time;
    while (!interrupted () && std::chrono::steady_clock::now () < end) {
      const auto left = end - std::chrono::steady_clock::now ();
      pause_for (std::min<orva::Limit> (left, std::chrono::milliseconds (50)));
      const auto state = session_.link ().server ().nothrow ().channel (channel_).state ();
      if (state && state->age.count () == 0 && state->status != orva::Status::recording)
        return false;
    }
    return true;
  }

private:
  orva::ChannelControl<orva::throwing> channel () { return session_.ask ().channel (channel_); }

  void undo () {
    session_.clock ().restart ();
    const auto quiet = session_.link ().server ().nothrow ().within (session_.clock ().left ());
    // A step that fails does not keep the others from being tried, unless there is no answer.
    const auto tried = [] (const orva::result<void> &done) {
      return done || done.failure ().kind == orva::Kind::refused;
    };
    const bool undone = tried (quiet.channel (channel_).stop ()) &&
                        tried (quiet.channel (channel_).edit (orva::EditTracks::none)) &&
                        tried (quiet.channel (channel_).unload ()) && tried (quiet.clip (clip_).erase ());
    if (!undone)
      session_.complain (Exit::failed, "What was begun could not be undone: look at channel " +
                                           std::string (1, channel_.letter ()) + " and the clip " + clip_ +
                                           ".");
  }

  Session &session_;
  const orva::Channel channel_;
  const std::string clip_;
};

void report (Session &session, const std::string &clip) {
  const orva::ClipInfo info = session.ask ().clip (clip).info ();
  const orva::Timebase base = session.link ().base ();
  session.out ().one ({{"clip", clip}, {"length", json_of (info.length, base)}},
                      "recorded " + shown (clip) + " " + info.length.text (base));
}

Exit record (Session &session, const Arguments &arguments) {
  const orva::Channel channel = arguments.channel ("CHANNEL");
  const std::string &clip = arguments.text ("CLIP");
  const orva::Position length = session.link ().position_if (arguments, "--length").value_or (0);
  catch_interrupts ();
  Recording recording (session, channel, clip);
  recording.start ({arguments.tracks_or_all ("--tracks"), length, channel});
  if (arguments.has ("--leave")) {
    session.out ().done ();
    return Exit::done;
  }
  const bool by_us = recording.wait (arguments.time_or ("--for", std::chrono::hours (24 * 365)));
  recording.end ();
  report (session, clip);
  if (!by_us)
    throw Problem (Exit::refused, "Another client has ended the recording.");
  return interrupted () && arguments.has ("--for") ? Exit::interrupted : Exit::done;
}

} // namespace

Family record_commands () {
  return {{"record",
           "record a new clip until Ctrl-C or for some time; the clip stays, the edit is ended",
           {{"CHANNEL", Takes::channel, "a letter from A to H or a number from 0 to 7"},
            {"CLIP", Takes::new_clip, "its name; it must not exist yet"},
            {"--for", Takes::time, "end after this time"},
            {"--length", Takes::position, "room that the server sets aside; without it the clip grows"},
            {"--tracks", Takes::tracks, "a list of video, key and audio; all by default"},
            {"--leave", Takes::nothing, "only start; \"stop\" and \"edit ... off\" end it"}},
           "orvactl record A NEWS/TAKE1 --for 10s",
           record}};
}

} // namespace orvactl
