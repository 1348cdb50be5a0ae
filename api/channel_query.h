#pragma once

#include "api/conn_object.h"

/// The road of a query of a channel: registers the item's report if that has not been done, then hands the
/// value to @p read under the item's lock.
/// @param item one of the items of ChannelCache
/// @param read is given `const Value &` and copies out what is wanted
template <class Item, class Read>
ResultCode OrvaConnObject::query_channel (const ARef<OrvaConnObject> &self, uint32_t channel,
                                          Item ChannelCache::*item, Read read) {
  const ResultCode code = channel_item_accessor (self, channel, item);
  if (code != ORVA_OK)
    return code;
  Item &of_channel = self->channel_cache (channel).*item;
  const AMutexScope hold (of_channel.lock);
  read (std::as_const (of_channel.value));
  return code;
}

/// Gives OK when the channel exists and its item is registered, which it sees to.
template <class Item>
ResultCode OrvaConnObject::channel_item_accessor (const ARef<OrvaConnObject> &self, uint32_t channel,
                                                  Item ChannelCache::*item) {
  if (channel >= channel_count)
    return no_such_channel (channel);
  Item &of_channel = self->channel_cache (channel).*item;
  return ensure_channel_item (self, channel, Item::report_type, of_channel.registered, of_channel.valid);
}
