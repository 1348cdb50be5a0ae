/// The framer: cuts elements out of a stream of bytes.
#pragma once

#include "xml/xml_nodes.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Takes the bytes of a stream and returns the elements with registered names, one at a time. It looks for
/// the first opening tag of a registered name and for the next closing tag of that name, without counting
/// nesting, and parses the bytes from the one to the other. The bytes before the opening tag are dropped when
/// the element is taken. Until then they count against the buffer.
///
/// When the parser refuses an element, the stream has failed. From then on all bytes are dropped, and no
/// element is returned until `reset`.
///
/// A NUL, or a byte that is not UTF-8, ends the text of an element at that place. The element is then
/// refused, because its closing tag is missing. No bytes of a stream can fail an assertion.
///
/// Threads: one at a time.
class XMLStreamParser {
public:
  /// @param bufsize bytes that can be held at once, which limits the size of an element; 0 is an assertion
  ///   failure and gives 1024
  explicit XMLStreamParser (uint64_t bufsize);
  XMLStreamParser (const XMLStreamParser &) = delete;
  XMLStreamParser &operator= (const XMLStreamParser &) = delete;

  /// Registers a top-level element. Called before the first `feed`.
  void add_element_name (std::string_view name);
  /// Known names for the parser; null for none. The table must outlive this object.
  void set_names (const XMLNameTable *names) { nodes_.set_names (names); }

  uint64_t free_space () const { return bufsize_ - used_; }
  /// Appends as many bytes as there is room for. @return their number. 0 for a length above 0 means that the
  /// buffer is full. If `next_element` then returns nothing, the element in the buffer can never be
  /// completed. A failed stream takes all bytes and drops them.
  uint64_t feed (uint64_t length, const char *bytes);
  /// The place for the next bytes, at least @p wanted or `free_space` of them, whichever is less. The caller
  /// writes the bytes there and then calls `add`. The stream has not failed.
  std::span<char> place_for (uint64_t wanted);
  /// The first @p count bytes of the last `place_for` are there.
  void add (uint64_t count) { used_ += count; }
  /// Takes out the next element. @return it, valid until the next call of a member that is not const; null
  /// when no element is complete or the stream has failed
  const XMLNodes *next_nodes ();
  /// The same as a tree of its own, the null tree for none.
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
  void consume (uint64_t consumed_length);
  std::string_view bytes () const { return {buffer_.data () + first_, used_}; }

  std::vector<char> buffer_; ///< grows with what has to be held, up to bufsize_
  uint64_t bufsize_;
  uint64_t first_ = 0; ///< where the bytes not yet consumed begin
  uint64_t used_ = 0;  ///< their number
  bool failed_ = false;
  std::vector<std::string> element_names_;
  XMLNodes nodes_; ///< the element in hand

  // How far the search has come, counted from first_, so that bytes are looked at once however they arrive.
  const std::string *open_name_ = nullptr; ///< of the opening tag found, null while there is none
  uint64_t open_pos_ = 0;                  ///< its place
  uint64_t searched_ = 0;                  ///< no tag looked for begins before this
};
