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

/// A query of a channel's state: registers the item's report if that has not been done, then calls @p read
/// with the value, under the item's lock.
/// @param item one of the items of ChannelCache
/// @param read receives `const Value &` and copies out what is wanted
template <class Item, class Read>
ResultCode query_channel (uint32_t connection, uint32_t channel, Item ChannelCache::*item,
                          Read read) noexcept {
  return on_connection (connection, [&] (const Connection &self) {
    if (channel >= ChannelStates::count)
      return result_error (AString ("Channel %1 does not exist").arg (channel));
    Item &of_channel = self->channels[channel].*item;
    const ResultCode code = ensure_channel_item (self, channel, of_channel);
    if (code != ORVA_OK)
      return code;
    const AMutexScope hold (of_channel.lock);
    read (std::as_const (of_channel.value));
    return code;
  });
}
