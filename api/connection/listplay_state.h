#pragma once

#include "schema/records.h"

#include <cstdint>
#include <vector>

/// The list of clips that is loaded on a channel, as the server's reports tell it. A plain value.
struct ListPlayState {
  using Position = AOption<uint16_t>; ///< a place in `items`, or none

  void load (const AString &id, uint32_t list_mode);
  // C35: doc/compatibility.md
  void unload ();
  /// Puts an element at a place; the places before it that are new have none.
  // C33: doc/compatibility.md
  void set_item (uint16_t index, const QUILL3::ListElement &element);
  /// Moves the element at a place, and those behind it, one on, together with the air positions there. Beyond
  /// the end it is `set_item`, and the air positions stay.
  // C33: doc/compatibility.md
  void insert_item (uint16_t index, const QUILL3::ListElement &element);
  /// Moves the elements behind a place one back, together with the air positions there; one that stood on the
  /// place is cleared.
  void remove_item (uint16_t index);
  /// Takes all elements and air positions; the list's identifier stays.
  // C35: doc/compatibility.md
  void clear_items ();

  bool is_loaded () const { return list_id.present; }
  /// Elements of the loaded list. A last one with nothing in it marks the end of the list and does not count.
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
