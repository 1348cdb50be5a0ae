#include "clip_file.h"

#include "vocabulary.h"
#include "world.h"

#include <fmt/format.h>
#include <fstream>
#include <sstream>

namespace sim {

namespace {

constexpr const char *own_clips = R"(
clip BARS length=18000 tracks=video,audio,timecode title="Colour bars and tone" creator=simulator
clip COUNTDOWN length=600 tracks=video,audio title="Ten seconds"
clip LOCKED length=3000 tracks=video,audio title="Not to be changed" read_only
directory NEWS
clip NEWS/OPENER length=1800 tracks=video,key,audio,timecode title="The opener" project=News stripe=216000 meta.desk=foreign meta.cleared=yes
clip NEWS/STRAP length=900 tracks=video,key title="Lower third" project=News loop=loop loop_in=100 loop_out=799
directory SPORT
clip SPORT/GOAL length=3000 tracks=video,audio,audio,timecode angles=4 title="The goal, four cameras" project=Sport
)";

constexpr std::uint32_t most_timecode = 0x7FFFFFFF;
constexpr std::uint32_t most_angles = 0xFF;

// Splits a line at its blanks. Blanks between quotes do not split it, and the quotes are removed.
std::vector<std::string> words_of (const std::string &line) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false, started = false;
  for (const char c : line + ' ') {
    if (c == '"')
      quoted = !quoted;
    if (c == '"' || quoted || (c != ' ' && c != '\t' && c != '\r')) {
      started = true;
      word += c == '"' ? "" : std::string (1, c);
    } else if (std::exchange (started, false)) {
      words.push_back (std::exchange (word, {}));
    }
  }
  if (quoted)
    throw std::runtime_error ("a quote is not closed");
  return words;
}

std::int64_t number_of (const std::string &value, std::uint32_t most = 0xFFFFFFFF) {
  const auto number = read_unsigned (value, most);
  if (!number)
    throw std::runtime_error (fmt::format ("'{}' is not a number up to {}", value, most));
  return static_cast<std::int64_t> (*number);
}

std::int64_t word_of (std::string_view tag, const std::string &value) {
  const int number = word_number (tag, value);
  if (number < 0)
    throw std::runtime_error (fmt::format ("'{}' is not a valid {}", value, tag));
  return number;
}

std::vector<Track> tracks_of (const std::string &value) {
  std::vector<Track> tracks;
  std::istringstream words (value);
  for (std::string word; std::getline (words, word, ',');)
    tracks.push_back ({static_cast<int> (word_of ("TrackType", word)), {}});
  return tracks;
}

void set_stripe (Clip &clip, const std::string &value) {
  clip.timecode_source = 1;
  clip.stripe_valid = 1;
  clip.stripe_field = number_of (value, most_timecode);
}

void set_attribute (Clip &clip, const std::string &word) {
  const std::size_t equals = std::min (word.find ('='), word.size ());
  const std::string name = word.substr (0, equals);
  const std::string value = word.substr (std::min (equals + 1, word.size ()));
  const std::map<std::string, std::function<void ()>> setters = {
      {"length", [&] { clip.untrimmed = number_of (value); }},
      {"tracks", [&] { clip.tracks = tracks_of (value); }},
      {"angles", [&] { clip.angles = std::max<std::int64_t> (number_of (value, most_angles), 1); }},
      {"title", [&] { clip.title = value; }},
      {"creator", [&] { clip.creator = value; }},
      {"project", [&] { clip.project = value; }},
      {"standard",
       [&] {
         clip.standard = word_at ("VideoStandard", static_cast<int> (word_of ("VideoStandard", value)));
       }},
      {"loop", [&] { clip.loop = word_of ("Loop", value); }},
      {"loop_in", [&] { clip.loop_in = number_of (value); }},
      {"loop_out", [&] { clip.loop_out = number_of (value); }},
      {"stripe", [&] { set_stripe (clip, value); }},
      {"read_only", [&] { clip.read_only_meta = clip.read_only_content = 1; }},
      {"read_only_meta", [&] { clip.read_only_meta = 1; }},
      {"read_only_content", [&] { clip.read_only_content = 1; }},
  };
  if (name.starts_with ("meta."))
    clip.metadata.emplace_back (name.substr (5), value);
  else if (const auto setter = setters.find (name); setter != setters.end ())
    setter->second ();
  else
    throw std::runtime_error ("unknown attribute '" + name + "'");
}

void add_clip (World &world, const std::vector<std::string> &words) {
  const Clip clip = clip_from (world, words[1], {words.begin () + 2, words.end ()});
  if (!world.clips.exists (clip.id))
    world.clips.add (clip);
}

void take_line (World &world, const std::string &line) {
  const std::vector<std::string> words = words_of (line);
  if (words.empty () || words.front ().starts_with ('#'))
    return;
  if (words.size () == 2 && words.front () == "directory") {
    if (!world.clips.directory_exists (words[1]))
      world.clips.add_directory (words[1]);
  } else if (words.size () >= 2 && words.front () == "clip") {
    add_clip (world, words);
  } else {
    throw std::runtime_error ("neither a clip nor a directory");
  }
}

void take_lines (World &world, std::istream &lines, const std::string &name) {
  int number = 0;
  for (std::string line; std::getline (lines, line);) {
    ++number;
    try {
      take_line (world, line);
    } catch (const std::exception &fault) {
      throw std::runtime_error (fmt::format ("{}, line {}: {}", name, number, fault.what ()));
    }
  }
  if (lines.bad ())
    throw std::runtime_error (name + " cannot be read to its end");
}

void take_file (World &world) {
  std::ifstream file (world.options.clips);
  if (!file)
    throw std::runtime_error (world.options.clips + " cannot be read");
  take_lines (world, file, world.options.clips);
}

void generate (World &world) {
  for (std::uint32_t number = 1; number <= world.options.generate; ++number) {
    Clip clip;
    clip.id = fmt::format ("GENERATED{:07}", number);
    clip.standard = world.standard.name;
    clip.tracks = {{0, {}}, {2, {}}};
    clip.title = fmt::format ("Generated clip {}", number);
    clip.untrimmed = 100 + number % 1000;
    clip.loop_out = clip.untrimmed - 1;
    if (!world.clips.exists (clip.id))
      world.clips.add_unchecked (clip);
  }
}

} // namespace

Clip clip_from (const World &world, const std::string &id, const std::vector<std::string> &attributes) {
  Clip clip;
  clip.id = id;
  clip.standard = world.standard.name;
  clip.tracks = {{0, {}}, {2, {}}};
  for (const std::string &attribute : attributes)
    set_attribute (clip, attribute);
  if (clip.loop_out == 0 && clip.untrimmed > 0)
    clip.loop_out = clip.untrimmed - 1;
  return clip;
}

void take_clips (World &world) {
  Transaction transaction (world.database);
  if (!world.options.clips.empty ())
    take_file (world);
  else if (world.clips.count () == 0) {
    std::istringstream lines (own_clips);
    take_lines (world, lines, "own clips");
  }
  generate (world);
  transaction.finish ();
}

} // namespace sim
