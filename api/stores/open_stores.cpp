#include "api/stores/open_stores.h"

namespace {

uint32_t next_store_number () noexcept {
  static constinit std::atomic<uint32_t> counter{0};
  return next_nonzero (counter);
}

} // namespace

HandleTable<ARef<KVStore>> &open_stores () {
  static auto &stores = *new HandleTable<ARef<KVStore>> (next_store_number);
  return stores;
}

namespace {
// Makes the table while the library is loaded.
[[maybe_unused]] const HandleTable<ARef<KVStore>> &made_at_load = open_stores ();
} // namespace
