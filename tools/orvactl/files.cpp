#include "files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace orvactl {

namespace {

[[noreturn]] void fail (const std::string &path, const char *what) {
  throw Problem (Exit::failed,
                 path + " " + what + (errno == 0 ? "" : ": ") + (errno == 0 ? "" : std::strerror (errno)));
}

} // namespace

std::string read_file (const std::string &path) {
  std::stringstream text;
  errno = 0;
  if (path == "-") {
    text << std::cin.rdbuf ();
    return text.str ();
  }
  std::error_code fault;
  if (std::filesystem::is_directory (path, fault))
    throw Problem (Exit::failed, path + " is a directory");
  std::ifstream file (std::filesystem::path (path), std::ios::binary);
  if (!file)
    fail (path, "cannot be read");
  if (file.peek () != std::ifstream::traits_type::eof ())
    text << file.rdbuf ();
  return text.str ();
}

void write_file (const std::string &path, const std::string &text) {
  const std::string other = path + ".new";
  errno = 0;
  {
    std::ofstream file (std::filesystem::path (other), std::ios::binary);
    file << text;
    file.close ();
    if (!file)
      fail (path, "cannot be written");
  }
  std::error_code fault;
  std::filesystem::rename (other, path, fault);
  if (fault)
    throw Problem (Exit::failed, path + " cannot be written: " + fault.message ());
}

std::map<std::string, std::string> read_pairs (const std::string &path) {
  std::map<std::string, std::string> pairs;
  try {
    const Json json = Json::parse (read_file (path));
    if (!json.is_object ())
      throw Problem (Exit::usage, path + " has to be a JSON object");
    for (const auto &[key, value] : json.items ()) {
      if (!value.is_string ())
        throw Problem (Exit::usage, path + ": the value of \"" + key + "\" has to be a text");
      pairs[key] = value.get<std::string> ();
    }
  } catch (const Json::parse_error &error) {
    const std::string text = error.what ();
    throw Problem (Exit::usage,
                   path + " is not JSON:" + text.substr (std::min (text.find (']') + 1, text.size ())));
  }
  return pairs;
}

} // namespace orvactl
