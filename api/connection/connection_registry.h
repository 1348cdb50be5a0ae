#pragma once

#include "api/connection/conn_object.h"
#include "api/handles/handle_table.h"

/// The connections of the process by number. Their lock is never held while a command waits.
using ConnectionRegistry = HandleTable<Connection>;

/// The one of the process, made at first use and never destroyed. A connection is closed under its lock: one
/// that nobody uses ends its thread there, and all who look for a connection wait for that.
ConnectionRegistry &connections ();
