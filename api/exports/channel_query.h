#pragma once

#include "api/basics/results.h"
#include "api/exports/export_call.h"

/// Registers the report of an item, unless that has been done, and waits for its first value.
template <class Item>
ResultCode ensure_channel_item (const Connection &self, uint32_t channel, Item &item) {
  return ensure_registered (
      self, item.registered,
      command::channel_report_register{.Channel = channel, .ChannelReportType = Item::report_type}, [&] {
        return self->channels.wait_for_first_value (item.valid)
                   ? result_ok ()
                   : result_error ("Register for channel item failed unexpectedly");
      });
}

/// Reads a value.
template <class Item, class Read>
ResultCode read_value (Item &item, Read &read) {
  const ResultCode ok = result_ok ();
  item.read (read);
  return ok;
}

/// The same when the item's report is not known to be registered: registers it unless it is.
template <class Item, class Read>
ResultCode register_and_read (const Connection &self, uint32_t channel, Item ChannelCache::*item,
                              Read &read) {
  if (channel >= ChannelStates::count)
    return result_error (AString ("Channel %1 does not exist").arg (channel));
  Item &of_channel = self->channels[channel].*item;
  const ResultCode code = ensure_channel_item (self, channel, of_channel);
  return code == ORVA_OK ? read_value (of_channel, read) : code;
}

/// A query of a channel's state: registers the item's report if that has not been done, then calls @p read
/// with the value. When it has been done, the connection is used under its lock in the
/// registry, which is faster than taking a reference to it.
/// @param item one of the items of ChannelCache
/// @param read receives `const Value &` and copies out what is wanted
template <class Item, class Read>
ResultCode query_channel (uint32_t connection, uint32_t channel, Item ChannelCache::*item,
                          Read read) noexcept {
  return guarded ([&] {
    Connection unregistered;
    ResultCode code = ORVA_OK;
    const bool known = connections ().visit (connection, [&] (const Connection &self) {
      if (channel < ChannelStates::count && (self->channels[channel].*item).registered)
        code = read_value (self->channels[channel].*item, read);
      else
        unregistered = self;
    });
    if (!known)
      return result_invalid_handle ();
    return unregistered ? register_and_read (unregistered, channel, item, read) : code;
  });
}
