// Templates against a model on plain strings. The first line is the template, each other line a value.
#include "base/astringformat.h"
#include "require.h"

#include <cctype>
#include <string>
#include <utility>
#include <vector>

namespace {

struct Piece {
  std::string text;
  int number; ///< -1 for literal text
};

size_t digits_at (const std::string &text, size_t at) {
  const size_t end = text.find_first_not_of ("0123456789", at);
  return (end == std::string::npos ? text.size () : end) - at;
}

std::vector<Piece> cut (const std::string &text) {
  std::vector<Piece> pieces;
  for (size_t at = 0; at != text.size ();) {
    const size_t digits = text[at] == '%' ? digits_at (text, at + 1) : 0;
    if (digits == 1 || digits == 2) {
      pieces.push_back ({text.substr (at, digits + 1), std::stoi (text.substr (at + 1, digits))});
      at += digits + 1;
    } else {
      pieces.push_back ({text.substr (at++, 1), -1});
    }
  }
  return pieces;
}

void fill (std::vector<Piece> *pieces, const std::string &value) {
  Piece *lowest = nullptr;
  for (Piece &piece : *pieces)
    if (piece.number >= 0 && (lowest == nullptr || piece.number < lowest->number))
      lowest = &piece;
  if (lowest != nullptr)
    *lowest = {value, -1};
}

std::string joined (const std::vector<Piece> &pieces) {
  std::string text;
  for (const Piece &piece : pieces)
    text += piece.text;
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const unsigned char *data, size_t size) {
  std::vector<std::string> lines (1);
  for (size_t i = 0; i != size && data[i] != 0; ++i) {
    if (data[i] == '\n' && lines.size () < 40)
      lines.emplace_back ();
    else
      lines.back ().push_back (static_cast<char> (data[i]));
  }
  std::vector<Piece> once = cut (lines[0]);
  std::string chained = lines[0];
  AStringFormat format (AString::from_latin1 (lines[0]));
  AString chain = AString::from_latin1 (lines[0]);
  for (size_t i = 1; i != lines.size (); ++i) {
    const AString value = AString::from_latin1 (lines[i]);
    fill (&once, lines[i]);
    format.arg (value);
    // Values that hold placeholders can double a chain with each call.
    if (chained.size () > 100000)
      continue;
    std::vector<Piece> pieces = cut (chained);
    fill (&pieces, lines[i]);
    chained = joined (pieces);
    chain = chain.arg (value);
  }
  require (format.to_string ().equals (joined (once)));
  require (chain.equals (chained));
  return 0;
}
