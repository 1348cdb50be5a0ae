/// Writing elements one after the other.
#pragma once

#include "base/astring.h"
#include "xml/xml_byte_output.h"
#include "xml/xml_tree.h"

#include <string_view>
#include <vector>

/// Takes elements as they are written: `open`, then one text or elements or nothing, then `close` with the
/// same name. Names live as long as the sink. Threads: one at a time.
class XMLSink {
public:
  virtual void open (const AString &name) = 0;
  virtual void text (const AString &text) = 0;
  /// ASCII in which nothing has to be escaped, and not empty.
  virtual void plain_text (std::string_view text) = 0;
  virtual void close (const AString &name) = 0;

protected:
  ~XMLSink () = default;
};

/// Makes trees of the elements.
class XMLTreeSink : public XMLSink {
public:
  void open (const AString &name) override;
  void text (const AString &text) override;
  void plain_text (std::string_view text) override;
  void close (const AString &name) override;

  /// The elements that have been closed and are in no other.
  XMLTree::List take () { return std::move (done_); }
  /// The first of them; there is one.
  XMLTree take_first () { return std::move (done_.take_front ()->value); }

private:
  struct Open {
    AString text{};
    XMLTree::List children{};
  };

  std::vector<Open> open_; ///< innermost last
  XMLTree::List done_;
};

/// Writes one element as UTF-8: a line break before each child and before the closing tag of an element with
/// children, and an element with nothing in it as `<Name />`. The same bytes as XMLTree::write_to gives with
/// XMLLines and contracted. Belongs on the stack: it holds 1024 bytes.
class XMLByteSink : public XMLSink {
public:
  /// @param output takes portions of at most 1024 bytes; what it points at outlives this object
  explicit XMLByteSink (AByteSink output) : bytes_ (output) {}
  XMLByteSink (const XMLByteSink &) = delete;
  XMLByteSink &operator= (const XMLByteSink &) = delete;

  void open (const AString &name) override;
  void text (const AString &text) override;
  void plain_text (std::string_view text) override;
  void close (const AString &name) override;
  /// Passes on what is held. Call it at the end.
  void finish () { bytes_.finish (); }

private:
  /// What was written last.
  enum class Last { nothing, start, text, element }; ///< start: an opening tag without its end

  void end_start_tag ();

  XMLByteOutput bytes_;
  Last last_ = Last::nothing;
};
