#include "api/stores/store_changes.h"

#include <bit>
#include <functional>
#include <utility>

namespace {

constexpr size_t smallest_table = 16;
constexpr size_t large_table = 1024; ///< slots; freed when no change waits

uint32_t hash_of (std::u16string_view key) {
  return static_cast<uint32_t> (std::hash<std::u16string_view> () (key)) | 1;
}

} // namespace

StoreChanges::Slot &StoreChanges::slot_of (std::u16string_view key, uint32_t hash) {
  for (size_t at = hash >> 1;; ++at) {
    Slot &slot = table_[at % table_.size ()];
    const uint32_t place = slot.number - first_number_;
    if (slot.hash == 0 || (slot.hash == hash && place < waiting_.size () && waiting_[place].key () == key))
      return slot;
  }
}

void StoreChanges::rebuild () {
  std::vector<Slot> old (std::bit_ceil (smallest_table + 4 * waiting_.size ()));
  std::swap (table_, old);
  used_ = waiting_.size ();
  uint32_t number = first_number_;
  for (const StoreChange &change : waiting_) {
    const uint32_t hash = hash_of (change.key ());
    slot_of (change.key (), hash) = {hash, number++};
  }
}

void StoreChanges::add (uint32_t type, std::u16string_view key, std::u16string_view value) {
  if (2 * (used_ + 1) > table_.size ())
    rebuild ();
  const uint32_t hash = hash_of (key);
  Slot &slot = slot_of (key, hash);
  if (slot.hash != 0) {
    waiting_[slot.number - first_number_] = StoreChange (type, key, value);
    return;
  }
  waiting_.emplace_back (type, key, value);
  slot = {hash, first_number_ + static_cast<uint32_t> (waiting_.size () - 1)};
  ++used_;
}

void StoreChanges::remove_first () noexcept {
  waiting_.pop_front ();
  ++first_number_;
  if (waiting_.empty () && table_.size () > large_table) {
    table_ = {};
    used_ = 0;
  }
}
