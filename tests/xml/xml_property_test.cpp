#include "support/assert_counter.h"
#include "xml/xml_model.h"
#include "xml/xml_parse.h"
#include "xml/xml_stream_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace {
/// The same numbers on every machine.
class Random {
public:
  explicit Random (uint64_t seed) : state_ (seed * 2654435761u + 1) {}
  uint64_t below (uint64_t limit) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return (state_ >> 11) % limit;
  }
  template <class T, size_t n>
  const T &one_of (const T (&choices)[n]) {
    return choices[below (n)];
  }

private:
  uint64_t state_;
};

std::string hostile_stream (Random &random) {
  static const char *const pieces[] = {"<reply>",
                                       "</reply>",
                                       "<report>",
                                       "</report>",
                                       "< reply\n>",
                                       "<\t/ report >",
                                       "<reply/>",
                                       "<a>",
                                       "</a>",
                                       "<a/>",
                                       "<Key>k</Key>",
                                       "x",
                                       " ",
                                       "\r\n",
                                       "&lt;",
                                       "&amp;",
                                       "&",
                                       ">",
                                       "<",
                                       "/",
                                       "<b>t</b>",
                                       "\xC3\xA9",
                                       "\xE2\x82\xAC",
                                       "\xF0\x9F\x8E\xAC",
                                       "\xE0\x80\xBC",
                                       "<reply><xid>7</xid><ok/></reply>",
                                       "<report><clip_created><ClipID>A</ClipID></clip_created></report>",
                                       "<reply>t</reply>"};
  static const char *const rare[] = {"\x80", "\xFF", "\xC3", "\b", "<re", "port>", "<!-- -->", "</"};
  std::string bytes;
  for (uint64_t n = random.below (30); n != 0; --n)
    bytes += random.below (12) == 0 ? random.one_of (rare) : random.one_of (pieces);
  if (random.below (20) == 0)
    bytes += '\0';
  return bytes;
}

std::vector<XMLTree> received (XMLStreamParser &stream, const std::string &bytes, Random *splits,
                               bool *full) {
  std::vector<XMLTree> trees;
  for (size_t done = 0; done != bytes.size () && !*full;) {
    const size_t rest = bytes.size () - done;
    const size_t n = splits != nullptr ? 1 + splits->below (std::min<size_t> (rest, 20)) : rest;
    const uint64_t taken = stream.feed (n, bytes.data () + done);
    *full = taken == 0;
    done += taken;
    for (XMLTree tree = stream.next_element (); !tree.is_null (); tree = stream.next_element ())
      trees.push_back (tree);
  }
  return trees;
}

TEST (XMLProperty, AnySplitGivesTheSameMessages) {
  AssertCounter assertions;
  size_t messages = 0, failures = 0, fills = 0;
  for (uint64_t seed = 1; seed != 3000; ++seed) {
    Random random (seed);
    const std::string bytes = hostile_stream (random);
    XMLStreamParser whole (40 + random.below (200)), parts (whole.free_space ());
    for (const char *name : {"reply", "report"}) {
      whole.add_element_name (name);
      parts.add_element_name (name);
    }
    bool whole_full = false, parts_full = false;
    const std::vector<XMLTree> expected = received (whole, bytes, nullptr, &whole_full);
    EXPECT_EQ (received (parts, bytes, &random, &parts_full), expected) << bytes;
    EXPECT_EQ (parts.is_failed (), whole.is_failed ()) << bytes;
    EXPECT_EQ (parts_full, whole_full) << bytes;
    messages += expected.size ();
    failures += whole.is_failed ();
    fills += whole_full;
  }
  EXPECT_EQ (assertions.count (), 0u);
  EXPECT_GT (messages, 500u);
  EXPECT_GT (failures, 500u);
  EXPECT_GT (fills, 20u);
}

TEST (XMLProperty, TheFramerDoesWhatThePlainOneDoes) {
  for (uint64_t seed = 1; seed != 2000; ++seed) {
    Random random (seed);
    XMLStreamParser stream (4096);
    xml_model::Stream model;
    model.names = {"reply", "report"};
    for (const std::string &name : model.names)
      stream.add_element_name (name);
    const std::string bytes = hostile_stream (random);
    for (size_t done = 0; done < bytes.size (); done += 9) {
      const std::string portion = bytes.substr (done, 9);
      stream.feed (portion.size (), portion.data ());
      model.bytes += portion;
      for (bool more = true; more;) {
        const XMLTree tree = stream.next_element ();
        ASSERT_TRUE (same (tree, model.next ())) << bytes;
        more = !tree.is_null ();
      }
    }
    EXPECT_EQ (stream.is_failed (), model.failed) << bytes;
  }
}

AString random_text (Random &random) {
  static const uint32_t points[] = {'a', 'Z', '0',  ' ',   '\n',   '<',     '>',    '&', '"',      '\'', ';',
                                    'l', 't', 0xE9, 0x100, 0x20AC, 0x1F3AC, 0xD800, 0,   0x10FFFF, 0x7F, 1};
  AStringBuilder text;
  for (uint64_t n = random.below (6) == 0 ? 60 + random.below (20) : random.below (5); n != 0; --n)
    text.append (AChar (random.one_of (points)));
  return text.finish ();
}

AString random_name (Random &random) {
  static const char letters[] = {'a', 'b', 'C', 'Z', 'z'};
  static const char others[] = {'a', 'Z', '0', '9', '_'};
  AStringBuilder name;
  name.append (AChar (random.one_of (letters)));
  for (uint64_t n = random.below (4); n != 0; --n)
    name.append (AChar (random.one_of (others)));
  return name.finish ();
}

XMLTree random_tree (Random &random, unsigned levels) {
  if (levels == 0 || random.below (3) == 0)
    return XMLTree (random_name (random), random_text (random));
  XMLTree tree (random_name (random));
  for (uint64_t n = random.below (5); n != 0; --n)
    tree.add_child (random_tree (random, levels - 1));
  return tree;
}

TEST (XMLProperty, AnyTreeOfTheAlphabetSurvivesWritingAndParsing) {
  for (uint64_t seed = 1; seed != 600; ++seed) {
    Random random (seed);
    const XMLTree tree = random_tree (random, 4);
    for (const XMLFormat format : {XMLCompact, XMLLines, XMLIndented})
      for (const bool contract : {false, true})
        EXPECT_TRUE (parse_xml_text (tree.render_text (format, contract)) == tree) << seed;
  }
}

TEST (XMLProperty, EntitiesSurviveEncodingAndDecoding) {
  for (uint64_t seed = 1; seed != 2000; ++seed) {
    Random random (seed);
    const AString text = random_text (random);
    EXPECT_TRUE (decode_entities (encode_entities (text)) == text);
    EXPECT_TRUE (xml_model::points (decode_entities (text)) ==
                 xml_model::decode_entities (xml_model::points (text)));
  }
}

std::string pairs (size_t count) {
  std::string bytes = "<reply><MetadataList>";
  for (size_t i = 0; i != count; ++i)
    bytes += "<Metadata><Key>key" + std::to_string (i) + "</Key><Value>a &lt; b</Value></Metadata>";
  return bytes + "</MetadataList></reply>";
}

std::string levels (size_t count) {
  std::string bytes = "<reply>";
  for (size_t i = 0; i != count; ++i)
    bytes += "<abcdefgh>";
  for (size_t i = 0; i != count; ++i)
    bytes += "</abcdefgh>";
  return bytes + "</reply>";
}

/// The shortest time of some runs, in seconds.
template <class Run>
double shortest (Run run) {
  using Clock = std::chrono::steady_clock;
  double best = 1e9;
  for (int i = 0; i != 5; ++i) {
    const auto start = Clock::now ();
    run ();
    best = std::min (best, std::chrono::duration<double> (Clock::now () - start).count ());
  }
  return best;
}

/// One large input may take as long as many small ones of the same size in all, and some more for caches;
/// squared it would be sixteen times. Both take about the same time, so that a busy machine slows both.
template <class Make, class Run>
void expect_linear (Make make, size_t size, Run run) {
  constexpr int many = 16;
  const auto small = make (size), large = make (size * many);
  const auto run_all_small = [&] {
    for (int i = 0; i != many; ++i)
      run (small);
  };
  double ratio = 1e9;
  for (int attempt = 0; attempt != 10 && ratio > 5; ++attempt)
    ratio = std::min (ratio, shortest ([&] { run (large); }) / shortest (run_all_small));
  EXPECT_LT (ratio, 5);
}

void take (XMLStreamParser &stream, const std::string &bytes, size_t portion) {
  size_t elements = 0;
  for (size_t done = 0; done < bytes.size (); done += portion) {
    stream.feed (std::min (portion, bytes.size () - done), bytes.data () + done);
    elements += !stream.next_element ().is_null ();
  }
  EXPECT_EQ (elements, 1u);
}

void take_bytewise (const std::string &bytes) {
  XMLStreamParser stream (bytes.size ());
  stream.add_element_name ("reply");
  take (stream, bytes, 1);
}

TEST (XMLCost, ReceivingIsLinearInTheMessage) {
  expect_linear (pairs, 30, take_bytewise);
  expect_linear (levels, 100, take_bytewise);
}

TEST (XMLCost, ParsingAndWritingAreLinearInTheMessage) {
  const auto tree_of = [] (auto make) {
    return [make] (size_t n) { return parse_xml_text (AString::from_utf8 (make (n))); };
  };
  const auto text_of = [] (auto make) { return [make] (size_t n) { return AString::from_utf8 (make (n)); }; };
  const auto parse = [] (const AString &text) { EXPECT_FALSE (parse_xml_text (text).is_null ()); };
  const auto write = [] (const XMLTree &tree) {
    tree.write_to (AByteSink (), XMLLines, true);
    EXPECT_GT (tree.render (XMLLines, true).size (), 0u);
    EXPECT_GT (tree.render_text (XMLLines, true).length (), 0u);
  };
  expect_linear (text_of (pairs), 30, parse);
  expect_linear (text_of (levels), 100, parse);
  expect_linear (tree_of (pairs), 30, write);
  expect_linear (tree_of (levels), 100, write);
}

TEST (XMLCost, ABufferFullOfMessagesIsLinearInTheirNumber) {
  const auto many = [] (size_t count) {
    std::string bytes;
    for (size_t i = 0; i != count; ++i)
      bytes += "<reply><xid>7</xid><ok/></reply>";
    return bytes;
  };
  expect_linear (many, 100, [] (const std::string &bytes) {
    XMLStreamParser stream (bytes.size ());
    stream.add_element_name ("reply");
    stream.add_element_name ("report");
    stream.feed (bytes.size (), bytes.data ());
    while (!stream.next_element ().is_null ()) {
    }
    EXPECT_EQ (stream.free_space (), bytes.size ());
  });
}
} // namespace
