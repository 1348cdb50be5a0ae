#pragma once

#include "base/astring.h"
#include "base/fixed.h"
#include "schema/sets.h"
#include "xml/xml_nodes.h"
#include "xml/xml_sink.h"

#include <cstdint>
#include <list>

/// The tags of the protocol: elements with a fixed name and a fixed type of value. tags.inc lists them, and
/// everything about a tag follows from its line there.
namespace QUILL3 {

/// Names the tags.
enum class Tag : uint8_t {
#define TAG(name, type, codec) name,
#include "schema/tags.inc"
};

struct Alert;
struct ChannelInformation;
struct ChannelListID;
struct ChaseElement;
struct ChaseElementChange;
struct ChasePlaybackIndex;
struct ClipAttrChange;
struct ClipInfo;
struct CompressionInfo;
struct ConfigurationItem;
struct ContentID;
struct DiskSpaceChange;
struct EEStatus;
struct ListElement;
struct ListElementChange;
struct ListPlaybackIndex;
struct MeltFlags;
struct MeltItem;
struct Metadata;
struct SmallTimecode;
struct Timecode;
struct TrackAttr;
struct TrackInfo;
struct Transition;

using ChannelSet = EnumSet<Enumeration::Channel, 12>;
using ReportSet = EnumSet<Enumeration::ReportType, 12>;
using ChannelReportSet = EnumSet<Enumeration::ChannelReportType, 8>;
using TrackSet = EnumSet<Enumeration::TrackType, 4>;
using TrackInfoVector = FixedVector<TrackInfo, 17>;
using TrackAttrVector = FixedVector<TrackAttr, 12>;
using ConfigurationItemAllowedValues = FixedVector<AString, 64>;
using KeyList = std::list<AString>;
using MetadataList = std::list<Metadata>;
using ConfigurationChange = std::list<ConfigurationItem>;

/// How many tags there are.
inline constexpr uint32_t tag_count = 0
#define TAG(name, type, codec) +1
#include "schema/tags.inc"
    ;

/// The type in memory of each tag's value, under the tag's name.
namespace tag_type {
#define TAG(name, type, codec) using name = type;
#include "schema/tags.inc"
} // namespace tag_type

/// The names of all tags, `tag_count` of them. There is one constant text for each, so most comparisons find
/// the same object on both sides. They are built when the library is loaded and never destroyed. Any thread.
const AString *tag_names ();
/// The name of @p tag.
inline const AString &tag_name (Tag tag) {
  return tag_names ()[static_cast<uint32_t> (tag)];
}

/// A table of the tags' names, in which the number of a name is that of its tag.
const XMLNameTable &tag_table ();
/// Adds the names of the tags to a table that is empty: their numbers there are those of the tags.
void add_tag_names (XMLNameTable *table);

/// The constant texts "boolean", "true" and "false".
const AString &word_boolean ();
const AString &word_true ();
const AString &word_false ();

/// The element of @p tag holding the value at @p value, which is of the tag's type in memory.
void write_value (XMLSink &sink, Tag tag, const void *value);
XMLTree make_value (Tag tag, const void *value);
/// Finds @p tag in @p tree, which may be the tag itself or its parent, and reads it.
/// @param value receives the value, of the tag's type in memory. After a failure it is undefined.
/// @param err may be null; receives the text of a failure, and is unchanged on success.
/// @return false if the tag is missing, doubled or bad. A flag never fails: it is set if @p tree has the
/// child.
bool get_value (const XMLElement &element, Tag tag, void *value, AString *err);
bool get_value (const XMLTree &tree, Tag tag, void *value, AString *err);

/// For each tag T: `make_T (value)`, the element holding the value; `get_T (tree, value, err)`, as
/// `get_value`; `has_T (tree)`, whether @p tree has a direct child T. The `make_T` of a flag takes no value.
#define TAG(name, type, codec)                                                                               \
  XMLTree make_##name (const tag_type::name &value);                                                         \
  bool get_##name (const XMLTree &tree, tag_type::name *value, AString *err);                                \
  bool has_##name (const XMLTree &tree);
#define FLAG(name)                                                                                           \
  XMLTree make_##name ();                                                                                    \
  bool get_##name (const XMLTree &tree, bool *value, AString *err);                                          \
  bool has_##name (const XMLTree &tree);
#include "schema/tags.inc"

} // namespace QUILL3
