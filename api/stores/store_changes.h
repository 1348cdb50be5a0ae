#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

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
  /// Says which change has a key with this hash. It stays when the change is removed; its number is then that
  /// of no waiting change, or of one with another key.
  struct Slot {
    uint32_t hash = 0; ///< 0 when the slot is free
    uint32_t number = 0;
  };

  /// Where the key is in the table, or the free slot where it belongs.
  Slot &slot_of (std::u16string_view key, uint32_t hash);
  /// Makes a table for all changes and as many more.
  void rebuild ();

  std::deque<StoreChange> waiting_;
  uint32_t first_number_ = 0; ///< of the first waiting change; the next one has the next number
  std::vector<Slot> table_;   ///< a power of two, by the hash of the key; at least half of it is free
  size_t used_ = 0;           ///< slots that are not free
};
