#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

/// A key that was set or erased.
class StoreChange {
public:
  /// @param type an OrvaStoreChange
  StoreChange (uint32_t type, std::u16string_view key, std::u16string_view value)
      : type_ (type), key_length_ (key.size ()) {
    text_.reserve (key.size () + value.size ());
    (text_ += key) += value;
  }

  uint32_t type () const { return type_; }
  std::u16string_view key () const { return std::u16string_view (text_).substr (0, key_length_); }
  std::u16string_view value () const { return std::u16string_view (text_).substr (key_length_); }

private:
  uint32_t type_;
  size_t key_length_;
  std::u16string text_; ///< the key and behind it the value
};

/// The changes of keys that wait for a caller: the last one of each key, in the order in which the keys were
/// changed first. One thread at a time.
class StoreChanges {
public:
  bool is_empty () const { return waiting_.empty (); }
  size_t size () const { return waiting_.size (); }

  /// Adds a change. A key that waits already keeps its place. When memory runs out, nothing has changed.
  void add (uint32_t type, std::u16string_view key, std::u16string_view value);
  /// The change whose key was changed first; there must be one.
  const StoreChange &first () const { return waiting_.front (); }
  /// Removes it.
  void remove_first () noexcept;

private:
  using Waiting = std::list<StoreChange>;

  Waiting waiting_;
  std::unordered_map<std::u16string_view, Waiting::iterator> by_key_; ///< its keys are parts of the changes
};
