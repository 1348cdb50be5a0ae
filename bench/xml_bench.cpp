// What receiving and sending a message costs as it grows: by the number of key-value pairs and by depth. Time
// that grows faster than the message shows in the bytes per second.

#include "xml/xml_parse.h"
#include "xml/xml_stream_parser.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

std::string pairs (int64_t count) {
  std::string bytes = "<reply><xid>7</xid><metadata_list><MetadataList>";
  for (int64_t i = 0; i != count; ++i)
    bytes += "<Metadata><Key>key/" + std::to_string (i) + "</Key><Value>value " + std::to_string (i) +
             "</Value></Metadata>";
  return bytes + "</MetadataList></metadata_list></reply>";
}

std::string levels (int64_t count) {
  std::string bytes = "<reply>";
  for (int64_t i = 0; i != count; ++i)
    bytes += "<a>";
  for (int64_t i = 0; i != count; ++i)
    bytes += "</a>";
  return bytes + "</reply>";
}

const XMLNameTable &names () {
  static const XMLNameTable &table = *[] {
    auto *made = new XMLNameTable;
    for (const char *name : {"reply", "xid", "metadata_list", "MetadataList", "Metadata", "Key", "Value"})
      made->add (name);
    return made;
  }();
  return table;
}

XMLStreamParser &stream (const XMLNameTable *known) {
  static XMLStreamParser &parser = *[] {
    auto *made = new XMLStreamParser (1 << 20);
    made->add_element_name ("reply");
    made->add_element_name ("report");
    return made;
  }();
  parser.set_names (known);
  return parser;
}

void count_bytes (benchmark::State &state, const std::string &bytes) {
  state.SetBytesProcessed (state.iterations () * static_cast<int64_t> (bytes.size ()));
}

/// In portions as a socket gives them.
void receive (benchmark::State &state, const std::string &bytes, const XMLNameTable *known) {
  constexpr size_t portion = 2048;
  XMLStreamParser &parser = stream (known);
  for (auto _ : state) {
    for (size_t done = 0; done < bytes.size (); done += portion)
      parser.feed (std::min (portion, bytes.size () - done), bytes.data () + done);
    benchmark::DoNotOptimize (parser.next_element ());
  }
  count_bytes (state, bytes);
}

void write (benchmark::State &state, const std::string &bytes) {
  const XMLTree tree = parse_xml_text (AString::from_utf8 (bytes));
  for (auto _ : state)
    tree.write_to (AByteSink (), XMLLines, true);
  count_bytes (state, bytes);
}

void receive_pairs (benchmark::State &state) {
  receive (state, pairs (state.range (0)), &names ());
}
BENCHMARK (receive_pairs)->Arg (1)->Arg (100)->Arg (400);

void receive_pairs_of_unknown_names (benchmark::State &state) {
  receive (state, pairs (state.range (0)), nullptr);
}
BENCHMARK (receive_pairs_of_unknown_names)->Arg (400);

void receive_levels (benchmark::State &state) {
  receive (state, levels (state.range (0)), &names ());
}
BENCHMARK (receive_levels)->Arg (100)->Arg (400)->Arg (4600);

void write_pairs (benchmark::State &state) {
  write (state, pairs (state.range (0)));
}
BENCHMARK (write_pairs)->Arg (1)->Arg (100)->Arg (400);

void write_levels (benchmark::State &state) {
  write (state, levels (state.range (0)));
}
BENCHMARK (write_levels)->Arg (100)->Arg (400)->Arg (4600);

} // namespace
