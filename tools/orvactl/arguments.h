#pragma once

#include "command.h"
#include "values.h"
#include "words.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvactl {

/// The values that a command line gives to the parameters of a command, already checked for their form.
class Arguments {
public:
  void add (const std::string &parameter, std::string value) {
    values_[parameter].push_back (std::move (value));
  }

  /// Whether there is such an option or argument.
  bool has (const std::string &name) const { return values_.contains (name); }
  /// All values of a repeated one.
  std::vector<std::string> all (const std::string &name) const;
  /// The value; the last one of several. Only for a value that is there.
  const std::string &text (const std::string &name) const { return values_.at (name).back (); }
  std::optional<std::string> text_if (const std::string &name) const;
  std::string text_or (const std::string &name, const std::string &otherwise) const {
    return text_if (name).value_or (otherwise);
  }

  orva::Channel channel (const std::string &name) const { return *channel_of (text (name)); }
  orva::Channels channels (const std::string &name) const { return *channels_of (text (name)); }
  double number (const std::string &name) const { return *number_of (text (name)); }
  double number_or (const std::string &name, double otherwise) const {
    return has (name) ? number (name) : otherwise;
  }
  std::uint64_t count (const std::string &name) const { return *count_of (text (name)); }
  std::optional<orva::Limit> time_if (const std::string &name) const {
    return has (name) ? time_of (text (name)) : std::nullopt;
  }
  orva::Limit time_or (const std::string &name, orva::Limit otherwise) const {
    return time_if (name).value_or (otherwise);
  }
  orva::Tracks tracks_or_all (const std::string &name) const {
    return has (name) ? *set_of (track_words, text (name)) : orva::Tracks::all;
  }
  template <class E, std::size_t N>
  std::optional<E> word_if (const std::string &name, const Word<E> (&words)[N]) const {
    return has (name) ? value_for (words, text (name)) : std::nullopt;
  }
  /// The position or distance as it was written.
  std::optional<WrittenPosition> written_if (const std::string &name) const {
    return has (name) ? written_position_of (text (name), true) : std::nullopt;
  }

private:
  std::map<std::string, std::vector<std::string>> values_;
};

/// Why a value does not fit a parameter; nothing when it does.
std::string fault_of (const Parameter &parameter, const std::string &value);

/// What help calls the value of a parameter, such as "POSITION".
std::string value_name (const Parameter &parameter);

} // namespace orvactl
