#pragma once

#include "schema/records.h"

#include <cstdint>
#include <vector>

/// The list of clips that is loaded on a channel, as the server has reported it. A plain value.
struct ListPlayState {
  using Position = AOption<uint16_t>; ///< a place in `items`, or none

  void load (const AString &id, uint32_t list_mode);
  // C35: doc/compatibility.md
  void unload ();
  /// Sets the element at a place. The list grows if the place is behind its end; the new places before it are
  /// empty.
  // C33: doc/compatibility.md
  void set_item (uint16_t index, const QUILL3::ListElement &element);
  /// Inserts an element at a place. The elements from there on move up by one, and so do the air positions
  /// that point to them. Behind the end it does the same as `set_item`, and the air positions stay.
  // C33: doc/compatibility.md
  void insert_item (uint16_t index, const QUILL3::ListElement &element);
  /// Removes the element at a place. The elements behind it move down by one, and so do the air positions
  /// that point to them. An air position that points to the place is cleared.
  void remove_item (uint16_t index);
  /// Removes all elements and air positions. The list's identifier stays.
  // C35: doc/compatibility.md
  void clear_items ();

  bool is_loaded () const { return list_id.present; }
  /// The number of elements of the loaded list. An empty last element marks the end of the list and does not
  /// count.
  // C34: doc/compatibility.md
  uint32_t count () const;

  AOption<AString> list_id{};
  AOption<uint32_t> mode{}; ///< enumeration ListPlayMode
  std::vector<AOption<QUILL3::ListElement>> items{};
  Position air_now{};
  Position air_next{};
  Position air_lock{};
  AOption<uint32_t> loop{}; ///< enumeration Loop

private:
  template <class Change>
  void each_air_position (Change change);
};
