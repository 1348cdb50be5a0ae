#include "api/stores/store_changes.h"

#include <utility>

void StoreChanges::add (uint32_t type, std::u16string_view key, std::u16string_view value) {
  Waiting added;
  added.emplace_back (type, key, value);
  const auto [place, is_new] = by_key_.try_emplace (added.front ().key (), added.begin ());
  if (is_new) {
    waiting_.splice (waiting_.end (), added);
    return;
  }
  auto node = by_key_.extract (place); // its key is a part of the change that is replaced
  StoreChange &change = *node.mapped ();
  change = std::move (added.front ());
  node.key () = change.key ();
  by_key_.insert (std::move (node));
}

void StoreChanges::remove_first () noexcept {
  by_key_.erase (first ().key ());
  waiting_.pop_front ();
}
