#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// Commands on play lists and chase lists. See commands.h.
namespace QUILL3::command {

/// Makes an element the next one.
struct list_play_next {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  uint32_t Roll{}; ///< enumeration Roll
};
inline constexpr Field list_play_next_rows[] = {
    FIELD (list_play_next, Channel), FIELD (list_play_next, ListIndex), FIELD (list_play_next, Roll)};
RECORD (list_play_next, list_play_next_rows);

/// Goes to an element at once.
struct list_play_now {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  uint32_t Roll{};                ///< enumeration Roll
  AOption<int32_t> JogDistance{}; ///< fields, signed
};
inline constexpr Field list_play_now_rows[] = {FIELD (list_play_now, Channel),
                                               FIELD (list_play_now, ListIndex), FIELD (list_play_now, Roll),
                                               FIELD (list_play_now, JogDistance)};
RECORD (list_play_now, list_play_now_rows);

/// Goes to the next element.
struct list_take {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field list_take_rows[] = {FIELD (list_take, Channel)};
RECORD (list_take, list_take_rows);

/// Asks for the names of all lists.
struct download_listids {};
RECORD (download_listids, no_fields);

/// Asks for the names of all chase lists.
struct download_chaseids {};
RECORD (download_chaseids, no_fields);

/// Asks for the elements of a list.
struct download_list {
  AString ListID{};
};
inline constexpr Field download_list_rows[] = {FIELD (download_list, ListID)};
RECORD (download_list, download_list_rows);

/// Asks for the elements of a chase list.
struct download_chase {
  AString ChaseID{};
};
inline constexpr Field download_chase_rows[] = {FIELD (download_chase, ChaseID)};
RECORD (download_chase, download_chase_rows);

/// Deletes a list.
struct list_delete {
  AString ListID{};
};
inline constexpr Field list_delete_rows[] = {FIELD (list_delete, ListID)};
RECORD (list_delete, list_delete_rows);

/// Deletes a chase list.
struct chase_delete {
  AString ChaseID{};
};
inline constexpr Field chase_delete_rows[] = {FIELD (chase_delete, ChaseID)};
RECORD (chase_delete, chase_delete_rows);

/// Gives a list another name.
struct list_rename {
  AString ListFromID{};
  AString ListToID{};
};
inline constexpr Field list_rename_rows[] = {FIELD (list_rename, ListFromID), FIELD (list_rename, ListToID)};
RECORD (list_rename, list_rename_rows);

/// Gives a chase list another name.
struct chase_rename {
  AString ChaseFromID{};
  AString ChaseToID{};
};
inline constexpr Field chase_rename_rows[] = {FIELD (chase_rename, ChaseFromID),
                                              FIELD (chase_rename, ChaseToID)};
RECORD (chase_rename, chase_rename_rows);

/// Begins to save a list; the elements follow on the same connection.
struct list_save_start {
  AString ListID{};
};
inline constexpr Field list_save_start_rows[] = {FIELD (list_save_start, ListID)};
RECORD (list_save_start, list_save_start_rows);

/// One element of the list that list_save_start named.
struct list_save_element {
  QUILL3::ListElement ListElement{};
};
inline constexpr Field list_save_element_rows[] = {FIELD (list_save_element, ListElement)};
RECORD (list_save_element, list_save_element_rows);

/// Ends the list that list_save_start named.
struct list_save_end {};
RECORD (list_save_end, no_fields);

/// Begins to save a chase list; the elements follow on the same connection.
struct chase_save_start {
  AString ChaseID{};
};
inline constexpr Field chase_save_start_rows[] = {FIELD (chase_save_start, ChaseID)};
RECORD (chase_save_start, chase_save_start_rows);

/// One element of the chase list that chase_save_start named.
struct chase_save_element {
  QUILL3::ChaseElement ChaseElement{};
};
inline constexpr Field chase_save_element_rows[] = {FIELD (chase_save_element, ChaseElement)};
RECORD (chase_save_element, chase_save_element_rows);

/// Ends the chase list that chase_save_start named.
struct chase_save_end {};
RECORD (chase_save_end, no_fields);

/// Tells the timecode that chase lists follow.
struct sending_chase_ltcin {
  QUILL3::Timecode Timecode{};
};
inline constexpr Field sending_chase_ltcin_rows[] = {FIELD (sending_chase_ltcin, Timecode)};
RECORD (sending_chase_ltcin, sending_chase_ltcin_rows);

/// Loads a list on a channel.
struct list_load {
  uint32_t Channel{}; ///< enumeration Channel
  AString ListID{};
  AOption<uint32_t> ListPlayMode{}; ///< enumeration ListPlayMode
  AOption<QUILL3::Transition> Transition{};
};
inline constexpr Field list_load_rows[] = {FIELD (list_load, Channel), FIELD (list_load, ListID),
                                           FIELD (list_load, ListPlayMode), FIELD (list_load, Transition)};
RECORD (list_load, list_load_rows);

/// Unloads the list of a channel.
struct list_unload {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field list_unload_rows[] = {FIELD (list_unload, Channel)};
RECORD (list_unload, list_unload_rows);

/// Loads a chase list on a channel.
struct chase_load {
  uint32_t Channel{}; ///< enumeration Channel
  AString ChaseID{};
};
inline constexpr Field chase_load_rows[] = {FIELD (chase_load, Channel), FIELD (chase_load, ChaseID)};
RECORD (chase_load, chase_load_rows);

/// Unloads the chase list of a channel.
struct chase_unload {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field chase_unload_rows[] = {FIELD (chase_unload, Channel)};
RECORD (chase_unload, chase_unload_rows);

/// Puts an element into the list of a channel.
struct list_insert {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  QUILL3::ListElement ListElement{};
};
inline constexpr Field list_insert_rows[] = {FIELD (list_insert, Channel), FIELD (list_insert, ListIndex),
                                             FIELD (list_insert, ListElement)};
RECORD (list_insert, list_insert_rows);

/// Puts an element into the chase list of a channel.
struct chase_insert {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
  QUILL3::ChaseElement ChaseElement{};
};
inline constexpr Field chase_insert_rows[] = {FIELD (chase_insert, Channel), FIELD (chase_insert, ChaseIndex),
                                              FIELD (chase_insert, ChaseElement)};
RECORD (chase_insert, chase_insert_rows);

/// Sets the element that plays below the list.
struct list_bed {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ListElement ListElement{};
};
inline constexpr Field list_bed_rows[] = {FIELD (list_bed, Channel), FIELD (list_bed, ListElement)};
RECORD (list_bed, list_bed_rows);

/// Sets how the end of the list is passed.
struct list_set_loop {
  uint32_t Channel{}; ///< enumeration Channel
  uint32_t Loop{};    ///< enumeration Loop
};
inline constexpr Field list_set_loop_rows[] = {FIELD (list_set_loop, Channel), FIELD (list_set_loop, Loop)};
RECORD (list_set_loop, list_set_loop_rows);

/// Takes an element out of the list of a channel.
struct list_remove_item {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
};
inline constexpr Field list_remove_item_rows[] = {FIELD (list_remove_item, Channel),
                                                  FIELD (list_remove_item, ListIndex)};
RECORD (list_remove_item, list_remove_item_rows);

/// Takes an element out of the chase list of a channel.
struct chase_remove_item {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
};
inline constexpr Field chase_remove_item_rows[] = {FIELD (chase_remove_item, Channel),
                                                   FIELD (chase_remove_item, ChaseIndex)};
RECORD (chase_remove_item, chase_remove_item_rows);

/// Begins a new order of the list of a channel; the elements follow on the same connection.
struct list_play_reorder_start {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field list_play_reorder_start_rows[] = {FIELD (list_play_reorder_start, Channel)};
RECORD (list_play_reorder_start, list_play_reorder_start_rows);

/// The next element of the new order.
struct list_play_reorder_item {
  uint16_t ListIndex{};
};
inline constexpr Field list_play_reorder_item_rows[] = {FIELD (list_play_reorder_item, ListIndex)};
RECORD (list_play_reorder_item, list_play_reorder_item_rows);

/// The last element of the new order.
struct list_play_reorder_finish {
  uint16_t ListIndex{};
};
inline constexpr Field list_play_reorder_finish_rows[] = {FIELD (list_play_reorder_finish, ListIndex)};
RECORD (list_play_reorder_finish, list_play_reorder_finish_rows);

/// Forgets that the list of a channel was changed.
struct list_play_clear_modified {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field list_play_clear_modified_rows[] = {FIELD (list_play_clear_modified, Channel)};
RECORD (list_play_clear_modified, list_play_clear_modified_rows);

/// Changes an element of the list of a channel.
struct list_play_modify_item {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  QUILL3::ListElementChange ListElementChange{};
};
inline constexpr Field list_play_modify_item_rows[] = {FIELD (list_play_modify_item, Channel),
                                                       FIELD (list_play_modify_item, ListIndex),
                                                       FIELD (list_play_modify_item, ListElementChange)};
RECORD (list_play_modify_item, list_play_modify_item_rows);

/// Begins a new order of the chase list of a channel; the elements follow on the same connection.
struct chase_play_reorder_start {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field chase_play_reorder_start_rows[] = {FIELD (chase_play_reorder_start, Channel)};
RECORD (chase_play_reorder_start, chase_play_reorder_start_rows);

/// The next element of the new order.
struct chase_play_reorder_item {
  uint16_t ChaseIndex{};
};
inline constexpr Field chase_play_reorder_item_rows[] = {FIELD (chase_play_reorder_item, ChaseIndex)};
RECORD (chase_play_reorder_item, chase_play_reorder_item_rows);

/// The last element of the new order.
struct chase_play_reorder_finish {
  uint16_t ChaseIndex{};
};
inline constexpr Field chase_play_reorder_finish_rows[] = {FIELD (chase_play_reorder_finish, ChaseIndex)};
RECORD (chase_play_reorder_finish, chase_play_reorder_finish_rows);

/// Forgets that the chase list of a channel was changed.
struct chase_play_clear_modified {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field chase_play_clear_modified_rows[] = {FIELD (chase_play_clear_modified, Channel)};
RECORD (chase_play_clear_modified, chase_play_clear_modified_rows);

/// Changes an element of the chase list of a channel.
struct chase_play_modify_item {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
  QUILL3::ChaseElementChange ChaseElementChange{};
};
inline constexpr Field chase_play_modify_item_rows[] = {FIELD (chase_play_modify_item, Channel),
                                                        FIELD (chase_play_modify_item, ChaseIndex),
                                                        FIELD (chase_play_modify_item, ChaseElementChange)};
RECORD (chase_play_modify_item, chase_play_modify_item_rows);

} // namespace QUILL3::command

#pragma GCC diagnostic pop
