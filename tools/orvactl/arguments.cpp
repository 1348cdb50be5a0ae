#include "arguments.h"

namespace orvactl {

std::vector<std::string> Arguments::all (const std::string &name) const {
  const auto found = values_.find (name);
  return found == values_.end () ? std::vector<std::string> () : found->second;
}

std::optional<std::string> Arguments::text_if (const std::string &name) const {
  return has (name) ? std::optional (text (name)) : std::nullopt;
}

namespace {

std::string listed (const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty () ? "" : ", ") + word;
  return text;
}

/// What a value of this kind has to be; nothing when every text is good.
std::string must_be (const Parameter &parameter, const std::string &value) {
  switch (parameter.takes) {
  case Takes::channel:
    return channel_of (value) ? "" : "one channel, a letter from A to H or a number from 0 to 7";
  case Takes::channels:
    return channels_of (value) ? "" : "channels such as A, 0, A,C-E or all";
  case Takes::position:
    return written_position_of (value, false)
               ? ""
               : "a position: fields (250), frames (125f) or a timecode (10:00:00:12)";
  case Takes::distance:
    return written_position_of (value, true)
               ? ""
               : "a distance: fields (-250), frames (-125f) or a timecode (-00:00:05:00)";
  case Takes::number:
    return number_of (value) ? "" : "a number";
  case Takes::count:
    return count_of (value) ? "" : "a whole number, 0 or more";
  case Takes::time:
    return time_of (value) ? "" : "a time such as 10s, 500ms or 2m";
  case Takes::condition:
    return written_condition_of (value)
               ? ""
               : "a channel and a state: 'A stopped' (or playing, recording, cueing, "
                 "empty, loaded), 'A clip NAME' or 'A at POSITION'";
  case Takes::tracks:
    return set_of (track_words, value) ? "" : "a list of video, key and audio, or all, or none";
  case Takes::edit_tracks:
    return set_of (edit_track_words, value) ? "" : "a list of bit4, bit5 and others, or all, or none";
  case Takes::word: {
    for (const std::string &word : parameter.words)
      if (word == value)
        return "";
    return "one of " + listed (parameter.words);
  }
  default:
    return "";
  }
}

} // namespace

std::string fault_of (const Parameter &parameter, const std::string &value) {
  const std::string good = must_be (parameter, value);
  return good.empty () ? "" : parameter.name + " has to be " + good + ", not \"" + value + "\"";
}

std::string value_name (const Parameter &parameter) {
  switch (parameter.takes) {
  case Takes::nothing:
    return "";
  case Takes::text:
    return "TEXT";
  case Takes::word:
    return "WORD";
  case Takes::channel:
    return "CHANNEL";
  case Takes::channels:
    return "CHANNELS";
  case Takes::clip:
  case Takes::new_clip:
    return "CLIP";
  case Takes::directory:
    return "DIRECTORY";
  case Takes::position:
    return "POSITION";
  case Takes::distance:
    return "DISTANCE";
  case Takes::number:
  case Takes::count:
    return "NUMBER";
  case Takes::time:
    return "TIME";
  case Takes::tracks:
  case Takes::edit_tracks:
    return "TRACKS";
  case Takes::condition:
    return "CONDITION";
  case Takes::server:
    return "SERVER";
  case Takes::file:
    break;
  }
  return "FILE";
}

} // namespace orvactl
