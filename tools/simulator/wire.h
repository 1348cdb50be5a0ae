#pragma once

#include "element.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sim {

/// A client has sent bytes that are not a document. It gets no answer and is disconnected.
struct Malformed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Splits the bytes of one connection into documents. A document ends with the end tag of its root element.
class Framer {
public:
  /// Adds received bytes. @throws Malformed when a document is longer than allowed.
  void feed (std::string_view bytes);

  /// The next whole document, or nothing while it is incomplete.
  /// @throws Malformed when the next element is not a `cmd`.
  std::optional<std::string> next ();

private:
  std::size_t find_end ();

  std::string held_;
  std::size_t taken_ = 0;    ///< `next` has returned the bytes before this
  std::size_t searched_ = 0; ///< the bytes before this have been searched for an end
  std::size_t matched_ = 0;  ///< how many bytes of an end tag the searched bytes end with
};

/// Parses one document in the XML of the protocol, which has only elements, text and five entities, in UTF-8.
/// @throws Malformed for everything else, such as attributes, comments, declarations and mixed content
Element parse_document (std::string_view document);

/// The document as a client is expected to write it: CR LF before each child, and empty elements as one tag.
std::string canonical_text (const Element &root);

/// The text with entities in place of the five characters that have one.
std::string escaped (std::string_view text);

} // namespace sim
