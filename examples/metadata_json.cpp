// Copies the attributes and the metadata of a clip to a JSON file, and back to a clip.
//
//     metadata_json save ADDRESS CLIP FILE
//     metadata_json load ADDRESS CLIP FILE
#include <orva.hpp>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

namespace {

using nlohmann::json;

void save (const orva::Server &server, const std::string &clip, const std::string &file) {
  const orva::ClipInfo info = server.clip (clip).info ();
  json pairs = json::array (); // an array keeps the order of the server
  for (const auto &[key, value] : info.metadata)
    pairs.push_back ({{"key", key}, {"value", value}});
  const json all = {{"title", info.title},
                    {"creator", info.creator},
                    {"project", info.project},
                    {"length", info.length.fields ()},
                    {"metadata", pairs}};
  std::ofstream (file) << all.dump (2) << "\n";
  std::printf ("%s: %zu pairs saved\n", clip.c_str (), pairs.size ());
}

void load (const orva::Server &server, const std::string &clip, const std::string &file) {
  const json all = json::parse (std::ifstream (file));
  orva::ClipEdit edit;
  edit.title = all.at ("title").get<std::string> ();
  edit.creator = all.at ("creator").get<std::string> ();
  edit.project = all.at ("project").get<std::string> ();
  for (const json &pair : all.at ("metadata"))
    edit.metadata.emplace_back (pair.at ("key").get<std::string> (), pair.at ("value").get<std::string> ());
  server.clip (clip).edit (edit); // one command for each change; ends at the first one that fails
  std::printf ("%s: %zu pairs loaded\n", clip.c_str (), edit.metadata.size ());
}

} // namespace

int main (int argc, char **argv) try {
  if (argc != 5) {
    std::printf ("metadata_json save|load ADDRESS CLIP FILE\n");
    return 2;
  }
  orva::Server server (argv[2]);
  server.wait_until_connected ();
  (argv[1] == std::string ("save") ? save : load) (server, argv[3], argv[4]);
  return 0;
} catch (const std::exception &failed) { // errors of orva.hpp and of the JSON library
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output of "save 127.0.0.1 NEWS/OPENER opener.json" and "load 127.0.0.1 BARS opener.json":
//
//     NEWS/OPENER: 2 pairs saved
//     BARS: 2 pairs loaded
