#pragma once

#include "xml/xml_children.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

/// The framer and the parser once more, written down as slowly and plainly as can be, to compare with.
namespace xml_model {

struct Tree {
  std::u32string name;
  std::u32string text;
  std::vector<Tree> children;
};

inline bool is_space (char32_t c) {
  return c == 0 || c > 255 || std::u32string_view (U" \t\n\r\v\f").find (c) != std::u32string_view::npos;
}

inline std::u32string trim (const std::u32string &s) {
  size_t first = 0, last = s.size ();
  while (first != last && is_space (s[first]))
    ++first;
  while (first != last && is_space (s[last - 1]))
    --last;
  return s.substr (first, last - first);
}

inline bool is_name (const std::u32string &s) {
  for (size_t i = 0; i != s.size (); ++i) {
    const bool letter = (s[i] >= 'a' && s[i] <= 'z') || (s[i] >= 'A' && s[i] <= 'Z');
    if (!letter && (i == 0 || !((s[i] >= '0' && s[i] <= '9') || s[i] == '_')))
      return false;
  }
  return !s.empty ();
}

inline std::u32string decode_entities (std::u32string s) {
  const std::pair<std::u32string, char32_t> table[] = {
      {U"&apos;", U'\''}, {U"&lt;", U'<'}, {U"&gt;", U'>'}, {U"&quot;", U'"'}, {U"&amp;", U'&'}};
  for (size_t at = s.find (U'&'); at != s.npos; at = s.find (U'&', at + 1))
    for (const auto &[entity, character] : table)
      if (s.compare (at, entity.size (), entity) == 0) {
        s.replace (at, entity.size (), 1, character);
        break;
      }
  return s;
}

/// Cuts a text at its tags and builds the tree from the pieces.
inline std::optional<Tree> parse (const std::u32string &untrimmed) {
  const std::u32string text = trim (untrimmed);
  std::optional<Tree> root;
  std::vector<Tree> open;
  size_t pos = 0;
  for (;;) {
    const size_t lt = text.find (U'<', pos), gt = text.find (U'>', pos);
    const std::u32string before = text.substr (pos, lt == text.npos ? text.npos : lt - pos);
    if (lt == text.npos && gt == text.npos)
      return open.empty () && trim (before).empty () ? root : std::nullopt;
    if (lt == text.npos || gt == text.npos || gt < lt)
      return std::nullopt;
    if (!open.empty ())
      open.back ().text += decode_entities (before);
    else if (!trim (before).empty ())
      return std::nullopt;
    std::u32string tag = trim (text.substr (lt + 1, gt - lt - 1));
    const bool closing = !tag.empty () && tag.front () == '/', empty = !tag.empty () && tag.back () == '/';
    if (closing && empty)
      return std::nullopt;
    if (closing)
      tag.erase (0, 1);
    if (empty)
      tag.pop_back ();
    tag = trim (tag);
    if (!is_name (tag) || root)
      return std::nullopt;
    if (!closing)
      open.push_back ({tag, {}, {}});
    if (closing || empty) {
      if (open.empty () || open.back ().name != tag)
        return std::nullopt;
      Tree done = std::move (open.back ());
      open.pop_back ();
      if (!done.children.empty ()) {
        if (!trim (done.text).empty ())
          return std::nullopt;
        done.text.clear ();
      }
      if (open.empty ())
        root = std::move (done);
      else
        open.back ().children.push_back (std::move (done));
    }
    pos = gt + 1;
  }
}

inline std::u32string decode_utf8 (const std::string &bytes) {
  std::u32string out;
  for (size_t i = 0; i != bytes.size ();) {
    const auto lead = static_cast<unsigned char> (bytes[i]);
    const size_t length = lead < 128 ? 1 : lead < 224 ? 2 : lead < 240 ? 3 : 4;
    const bool bad = lead == 0 || (lead >= 128 && lead < 194) || lead > 244;
    if (bad || i + length > bytes.size ())
      break;
    uint32_t value = length == 1 ? lead : lead & (0x7Fu >> length);
    for (size_t k = 1; k != length; ++k) {
      const auto next = static_cast<unsigned char> (bytes[i + k]);
      if (next < 128 || next > 191)
        return out;
      value = value * 64 + next % 64;
    }
    out += static_cast<char32_t> (value);
    i += length;
  }
  return out;
}

/// Without the white space of tags in raw bytes.
inline size_t skip (const std::string &s, size_t i) {
  while (i < s.size () && std::strchr ("\b\t\n\r ", s[i]) != nullptr && s[i] != 0)
    ++i;
  return i;
}

inline size_t find_tag (const std::string &s, size_t from, const std::string &name, bool closing) {
  for (size_t lt = s.find ('<', from); lt != s.npos; lt = s.find ('<', lt + 1)) {
    size_t i = skip (s, lt + 1);
    if (closing) {
      if (i >= s.size () || s[i] != '/')
        continue;
      i = skip (s, i + 1);
    }
    if (i >= s.size () || s.compare (i, name.size (), name) != 0)
      continue;
    i = skip (s, i + name.size ());
    if (i < s.size () && s[i] == '>')
      return lt;
  }
  return s.npos;
}

/// A stream with all its bytes so far.
struct Stream {
  std::string bytes;
  std::vector<std::string> names;
  bool failed = false;

  std::optional<Tree> next () {
    size_t pos = bytes.npos;
    std::string name;
    for (const std::string &n : names)
      if (const size_t at = find_tag (bytes, 0, n, false); at < pos) {
        pos = at;
        name = n;
      }
    const size_t close = pos == bytes.npos ? bytes.npos : find_tag (bytes, pos, name, true);
    if (failed || close == bytes.npos)
      return std::nullopt;
    const size_t end = bytes.find ('>', close) + 1;
    std::optional<Tree> tree = parse (decode_utf8 (bytes.substr (pos, end - pos)));
    failed = !tree;
    if (tree)
      bytes.erase (0, end);
    return tree;
  }
};

inline std::u32string points (const AString &text) {
  std::u32string out;
  text.walk_runs ([&out] (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count; ++i)
      out += static_cast<char32_t> (run[i].value ());
    return true;
  });
  return out;
}

inline bool same (const XMLTree &tree, const Tree &model) {
  if (tree.is_null () || points (tree.name ()) != model.name || points (tree.text ()) != model.text ||
      tree.children ().size () != model.children.size () || !tree.attributes ().empty ())
    return false;
  size_t i = 0;
  for (const XMLTree &child : XMLChildren (tree))
    if (!same (child, model.children[i++]))
      return false;
  return true;
}

inline bool same (const XMLTree &tree, const std::optional<Tree> &model) {
  return model ? same (tree, *model) : tree.is_null ();
}
} // namespace xml_model
