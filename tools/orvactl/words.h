#pragma once

#include <orva.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvactl {

/// A value of an enumeration and the word for it, on the command line and in JSON.
template <class E>
struct Word {
  E value;
  const char *word;
};

inline constexpr Word<orva::Status> status_words[] = {{orva::Status::none, "none"},
                                                      {orva::Status::stopped, "stopped"},
                                                      {orva::Status::cueing, "cueing"},
                                                      {orva::Status::playing, "playing"},
                                                      {orva::Status::recording, "recording"}};
inline constexpr Word<orva::Repeat> repeat_words[] = {{orva::Repeat::off, "off"},
                                                      {orva::Repeat::loop, "loop"},
                                                      {orva::Repeat::loop_to, "loop-to"},
                                                      {orva::Repeat::pingpong, "pingpong"},
                                                      {orva::Repeat::pingpong_to, "pingpong-to"}};
inline constexpr Word<orva::When> when_words[] = {{orva::When::activated, "activated"},
                                                  {orva::When::previous_stops, "previous-stops"},
                                                  {orva::When::now, "now"},
                                                  {orva::When::end_of_clip, "end-of-clip"}};
inline constexpr Word<orva::Transition> transition_words[] = {{orva::Transition::cut, "cut"},
                                                              {orva::Transition::dissolve, "dissolve"}};
inline constexpr Word<orva::FollowSpeed> follow_words[] = {{orva::FollowSpeed::none, "none"},
                                                           {orva::FollowSpeed::smart, "smart"},
                                                           {orva::FollowSpeed::one_x, "1x"},
                                                           {orva::FollowSpeed::follow, "follow"}};
inline constexpr Word<orva::Playback> playback_words[] = {{orva::Playback::field, "field"},
                                                          {orva::Playback::both_fields, "both-fields"}};
inline constexpr Word<orva::TimecodeSource> source_words[] = {
    {orva::TimecodeSource::zero_based, "zero-based"},
    {orva::TimecodeSource::striped, "striped"},
    {orva::TimecodeSource::recorded, "recorded"},
    {orva::TimecodeSource::recorded_0_stripe, "recorded-0-stripe"}};
inline constexpr Word<orva::Counting> counting_words[] = {{orva::Counting::drop_frame, "drop-frame"},
                                                          {orva::Counting::non_drop_frame, "non-drop-frame"}};
inline constexpr Word<orva::Standard> standard_words[] = {
    {orva::Standard::i1080_60, "1080i60"},       {orva::Standard::i1080_59_94, "1080i59.94"},
    {orva::Standard::i1080_50, "1080i50"},       {orva::Standard::i1080_48, "1080i48"},
    {orva::Standard::i1080_47_95, "1080i47.95"}, {orva::Standard::p720_60, "720p60"},
    {orva::Standard::p720_59_94, "720p59.94"},   {orva::Standard::p720_50, "720p50"},
    {orva::Standard::i625_50, "625i50"},         {orva::Standard::i525_59_94, "525i59.94"}};
inline constexpr Word<orva::Rate> rate_words[] = {{orva::Rate::hz_60, "60"},
                                                  {orva::Rate::hz_59_94, "59.94"},
                                                  {orva::Rate::hz_50, "50"},
                                                  {orva::Rate::hz_48, "48"},
                                                  {orva::Rate::hz_47_95, "47.95"}};
inline constexpr Word<orva::Resolution> resolution_words[] = {{orva::Resolution::i1080, "1080i"},
                                                              {orva::Resolution::p720, "720p"},
                                                              {orva::Resolution::i625, "625i"},
                                                              {orva::Resolution::i525, "525i"}};
inline constexpr Word<orva::Tracks> track_words[] = {
    {orva::Tracks::video, "video"}, {orva::Tracks::key, "key"}, {orva::Tracks::audio, "audio"}};
inline constexpr Word<orva::EditTracks> edit_track_words[] = {{orva::EditTracks::bit_4, "bit4"},
                                                              {orva::EditTracks::bit_5, "bit5"},
                                                              {orva::EditTracks::others, "others"}};

/// The word for a value; "?" for one that has none.
template <class E, std::size_t N>
const char *word_for (const Word<E> (&words)[N], E value) {
  for (const Word<E> &each : words)
    if (each.value == value)
      return each.word;
  return "?";
}

template <class E, std::size_t N>
std::optional<E> value_for (const Word<E> (&words)[N], std::string_view word) {
  for (const Word<E> &each : words)
    if (each.word == word)
      return each.value;
  return {};
}

template <class E, std::size_t N>
std::vector<std::string> all_words (const Word<E> (&words)[N]) {
  std::vector<std::string> all;
  for (const Word<E> &each : words)
    all.emplace_back (each.word);
  return all;
}

/// The members of a set, such as "video,audio"; "all" and "none" for those.
template <class E, std::size_t N>
std::string set_text (const Word<E> (&words)[N], E set) {
  if (set == E::all || set == E::none)
    return set == E::all ? "all" : "none";
  std::string text;
  for (const Word<E> &each : words)
    if ((set & each.value) != E::none)
      text += (text.empty () ? "" : ",") + std::string (each.word);
  return text;
}

template <class E, std::size_t N>
std::optional<E> set_of (const Word<E> (&words)[N], std::string_view text) {
  if (text == "all" || text == "none")
    return text == "all" ? E::all : E::none;
  E set = E::none;
  for (std::size_t at = 0; at <= text.size ();) {
    const std::size_t end = std::min (text.find (',', at), text.size ());
    const std::optional<E> one = value_for (words, text.substr (at, end - at));
    if (!one)
      return {};
    set = set | *one;
    at = end + 1;
  }
  return set;
}

} // namespace orvactl
