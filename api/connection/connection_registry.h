#pragma once

#include "api/connection/conn_object.h"
#include "api/handles/handle_table.h"

/// The connections of the process by number. Their lock is never held while a command waits.
using ConnectionRegistry = HandleTable<Connection>;

/// The registry of the process, made at first use and never destroyed. A connection is closed under the lock
/// of the registry. When nobody else uses it, its thread ends there, and whoever looks up a connection waits
/// for that.
ConnectionRegistry &connections ();
