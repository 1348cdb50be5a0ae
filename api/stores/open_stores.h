#pragma once

#include "api/handles/handle_table.h"
#include "api/stores/kv_store.h"

/// The open stores of the process by handle. They have numbers of their own: the first is 1, and no number is
/// used again until the counter wraps around. Made when the library is loaded and never destroyed. Its lock
/// is never held while a store is made, called or closed. Any thread.
HandleTable<ARef<KVStore>> &open_stores ();
