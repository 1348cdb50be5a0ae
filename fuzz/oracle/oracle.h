/// The first framer, parser and reader of rows. They are plain, slow and kept unchanged, so that those of the
/// library can be compared with them. Not part of the library.
#pragma once

#include "schema/rows.h"
#include "xml/xml_tree.h"

#include <string>
#include <string_view>
#include <vector>

namespace oracle {

/// Cuts elements out of a stream of bytes, as XMLStreamParser does.
class StreamParser {
public:
  /// @param bufsize bytes that can be held at once, which limits the size of an element; 0 is an assertion
  ///   failure and gives 1024
  explicit StreamParser (uint64_t bufsize);
  StreamParser (const StreamParser &) = delete;
  StreamParser &operator= (const StreamParser &) = delete;

  /// Registers a top-level element. Called before the first `feed`.
  void add_element_name (std::string_view name);

  uint64_t free_space () const { return bufsize_ - used_; }
  /// Appends as many bytes as there is room for. @return their number; 0 for a length above 0 means that the
  /// buffer is full and, if `next_element` has nothing to give, that the element in it can never be
  /// completed. A failed stream swallows all.
  uint64_t feed (uint64_t length, const char *bytes);
  /// Takes out the next element. @return the null tree when none is complete yet or the stream failed
  XMLTree next_element ();
  bool is_failed () const { return failed_; }
  /// Drops all bytes and the failed state. The registered names stay.
  void reset ();

private:
  struct Frame {
    uint64_t start;
    uint64_t length;
  };

  bool find_opening ();
  bool find_frame (Frame *frame);
  XMLTree parse (const Frame &frame);
  void consume (uint64_t consumed_length);
  const char *bytes () const { return buffer_.data () + first_; }

  std::vector<char> buffer_;
  uint64_t bufsize_;
  uint64_t first_ = 0; ///< where the bytes not yet consumed begin
  uint64_t used_ = 0;  ///< their number
  bool failed_ = false;
  std::vector<std::string> element_names_;
  std::vector<AChar> decoded_; ///< scratch for the element in hand

  // How far the search has come, counted from first_, so that bytes are looked at once however they arrive.
  const std::string *open_name_ = nullptr; ///< of the opening tag found, null while there is none
  uint64_t open_pos_ = 0;                  ///< its place
  uint64_t searched_ = 0;                  ///< no tag looked for begins before this
};

/// As the functions of these names in schema/rows.h and schema/tags.h.
bool read_record (const XMLTree &tree, const QUILL3::Rows &rows, void *to, AString *err);
bool read_body (const XMLTree &tree, const QUILL3::Rows &rows, void *to, AString *err);
bool get_value (const XMLTree &tree, QUILL3::Tag tag, void *value, AString *err);

} // namespace oracle
