#include "api/connection/listplay_state.h"

template <class Change>
void ListPlayState::each_air_position (Change change) {
  for (Position *position : {&air_now, &air_next, &air_lock})
    if (position->present)
      change (*position);
}

void ListPlayState::load (const AString &id, uint32_t list_mode) {
  list_id = id;
  mode = list_mode;
}

void ListPlayState::unload () {
  list_id.clear ();
  mode.clear ();
  clear_items ();
}

void ListPlayState::set_item (uint16_t index, const QUILL3::ListElement &element) {
  if (index >= items.size ())
    items.resize (size_t{index} + 1);
  items[index] = element;
}

void ListPlayState::insert_item (uint16_t index, const QUILL3::ListElement &element) {
  if (index > items.size ())
    return set_item (index, element);
  items.insert (items.begin () + index, element);
  each_air_position ([index] (Position &position) {
    if (position.value >= index)
      ++position.value;
  });
}

void ListPlayState::remove_item (uint16_t index) {
  if (index < items.size ())
    items.erase (items.begin () + index);
  each_air_position ([index] (Position &position) {
    if (position.value == index)
      position.clear ();
    else if (position.value > index)
      --position.value;
  });
}

void ListPlayState::clear_items () {
  items.clear ();
  each_air_position ([] (Position &position) { position.clear (); });
}

uint32_t ListPlayState::count () const {
  if (!is_loaded () || items.empty ())
    return 0;
  const AOption<QUILL3::ListElement> &last = items.back ();
  const bool is_end_mark = !last.present || last.value == QUILL3::ListElement ();
  return static_cast<uint32_t> (items.size () - (is_end_mark ? 1 : 0));
}
