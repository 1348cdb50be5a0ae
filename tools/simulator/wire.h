#pragma once

#include "element.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sim {

/// A client has sent bytes that are no document. There is no answer; the client is disconnected.
struct Malformed : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Cuts the bytes of one connection into documents. A document ends with the end of its root element.
class Framer {
public:
  /// Adds received bytes. @throws Malformed when there are more than a document may have.
  void feed (std::string_view bytes);

  /// The next whole document, or nothing while it is incomplete.
  /// @throws Malformed when the next element is not a `cmd`.
  std::optional<std::string> next ();

private:
  std::size_t find_end ();

  std::string held_;
  std::size_t taken_ = 0;    ///< documents up to here were given away
  std::size_t searched_ = 0; ///< bytes up to here were searched for an end
  std::size_t matched_ = 0;  ///< bytes of an end tag that the last searched bytes are
};

/// Parses one document of the small XML of the protocol: elements and text, five entities, UTF-8.
/// @throws Malformed for everything else, attributes, comments, declarations and mixed content included.
Element parse_document (std::string_view document);

/// The document as a client is expected to write it: each child behind CR LF, empty elements contracted.
std::string canonical_text (const Element &root);

/// Text with the five characters escaped that have entities.
std::string escaped (std::string_view text);

} // namespace sim
