// The table in orva.hpp names every function of orva.h, and the headers call all but two. Read from the
// sources.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace {

using Names = std::set<std::string>;

std::string contents (const std::string &name) {
  std::ifstream file (std::string (ORVA_INCLUDE_FOLDER) + "/" + name);
  EXPECT_TRUE (file) << name;
  return {std::istreambuf_iterator<char> (file), {}};
}

/// All texts that the first group of the pattern matches.
Names matches (const std::string &text, const char *pattern) {
  const std::regex expression (pattern);
  Names names;
  for (std::sregex_iterator at (text.begin (), text.end (), expression); at != std::sregex_iterator (); ++at)
    names.insert ((*at)[1]);
  return names;
}

/// The text without comments, or the comments alone.
std::string part (const std::string &text, bool comments) {
  std::string kept;
  for (size_t at = 0; at < text.size ();) {
    const bool block = text.compare (at, 2, "/*") == 0, line = text.compare (at, 2, "//") == 0;
    size_t end = at + 1;
    if (block)
      end = text.find ("*/", at) + 2;
    else if (line)
      end = text.find ('\n', at);
    if ((block || line) == comments)
      kept += text.substr (at, end - at);
    at = end;
  }
  return kept;
}

Names declared () {
  return matches (part (contents ("orva.h"), false), R"(ORVA_API [a-z0-9_]+ (orva_[a-z0-9_]+) \()");
}

TEST (Names, AreAllInTheTable) {
  const Names names = declared ();
  EXPECT_EQ (names.size (), 173u);
  std::string comments = part (contents ("orva.hpp"), true);
  comments.erase (0, comments.find ("WHERE EACH FUNCTION"));
  EXPECT_EQ (matches (comments, R"(\b(orva_[a-z0-9_]+)\b)"), names);
}

TEST (Names, AreAllUsed) {
  Names used;
  for (const char *file :
       {"text", "values", "position", "limits", "call", "channel", "clip", "store", "events", "server"})
    used.merge (
        matches (part (contents (std::string ("orva/") + file + ".hpp"), false), R"(\b(orva_[a-z0-9_]+)\b)"));
  used.erase ("orva_char");
  Names expected = declared ();
  expected.erase ("orva_wait_until_connected"); // the table says why
  expected.erase ("orva_set_channel_repeat");
  EXPECT_EQ (used, expected);
}

} // namespace
