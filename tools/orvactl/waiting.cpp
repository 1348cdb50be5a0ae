#include "waiting.h"
#include "views.h"

namespace orvactl {

Parameter wait_option () {
  return {"--wait", Takes::nothing, "return when the state is reached"};
}

bool is_at (const orva::ChannelState &state, orva::Position position) {
  const orva::Position moved = state.position - position;
  return state.status == orva::Status::playing ? moved >= 0 && moved < 250 : moved == orva::Position (0);
}

orva::ChannelState wait_for_state (Session &session, orva::Channel channel,
                                   const std::function<bool (const orva::ChannelState &)> &reached) {
  const auto state = session.ask ().nothrow ().channel (channel).wait_until (reached);
  if (!state && state.failure ().kind == orva::Kind::timed_out)
    throw Problem (Exit::timed_out, std::string ("Channel ") + channel.letter () +
                                        " has not reached the state within " +
                                        time_text (session.clock ().limit ()) + ".");
  return state.value ();
}

Exit send_and_wait (Session &session, const Arguments &arguments, orva::Channels channels,
                    const std::function<void ()> &send, const Reached &reached) {
  if (!arguments.has ("--wait")) {
    send ();
    session.out ().done ();
    return Exit::done;
  }
  const auto before = states_of (session.link (), channels);
  send ();
  Json states = Json::array ();
  for (const auto &[channel, old] : before) {
    const auto state =
        wait_for_state (session, channel, [&] (const orva::ChannelState &now) { return reached (old, now); });
    if (session.out ().json ())
      states.push_back (json_of (state, channel, session.link ().base ()));
  }
  if (session.out ().json ())
    session.out ().object (states);
  return Exit::done;
}

Condition condition_of (Link &link, const std::string &text) {
  const WrittenCondition written = *written_condition_of (text);
  const auto make = [&] () -> std::function<bool (const orva::ChannelState &)> {
    if (const auto status = value_for (status_words, written.word))
      return [=] (const auto &state) { return state.status == *status; };
    if (written.word == "clip")
      return [=] (const auto &state) { return state.clip == written.value; };
    if (written.word == "at")
      return [position = link.position (*written_position_of (written.value, false))] (const auto &state) {
        return is_at (state, position);
      };
    return [empty = written.word == "empty"] (const auto &state) { return state.clip.empty () == empty; };
  };
  return {written.channel, make ()};
}

} // namespace orvactl
