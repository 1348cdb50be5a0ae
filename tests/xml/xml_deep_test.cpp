// Trees as deep as a message can make them, and far deeper, on the stack of a connection thread.

#include "base/amethod.h"
#include "platform/threads.h"
#include "xml/xml_stream_parser.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

namespace {
/// Runs something on a thread with 65536 bytes of stack and waits for it.
template <class Run>
void on_small_stack (Run run) {
  struct Job {
    Run run;
    std::mutex lock{};
    std::condition_variable ended{};
    bool done = false;
  } job{std::move (run)};
  const auto start = [] (void *argument) {
    auto *j = static_cast<Job *> (argument);
    j->run ();
    const std::lock_guard held (j->lock);
    j->done = true;
    j->ended.notify_one ();
  };
  ASSERT_TRUE (platform::thread_start (start, &job));
  std::unique_lock held (job.lock);
  job.ended.wait (held, [&job] { return job.done; });
}

/// Counts the bytes of what is written.
class ByteCount {
public:
  AByteSink take () { return AMethod::bind (this, &ByteCount::add); }
  uint64_t bytes = 0;

private:
  void add (const void *, uint64_t length) { bytes += length; }
};

constexpr size_t deepest = 4678; ///< levels below the root that fit 32768 bytes

std::string nested (size_t levels) {
  std::string bytes = "<reply>";
  for (size_t i = 0; i != levels; ++i)
    bytes += "<a>";
  for (size_t i = 0; i != levels; ++i)
    bytes += "</a>";
  return bytes + "</reply>";
}

XMLTree received (const std::string &bytes) {
  XMLStreamParser stream (32768);
  stream.add_element_name ("reply");
  EXPECT_EQ (stream.feed (bytes.size (), bytes.data ()), bytes.size ());
  return stream.next_element ();
}

size_t depth_of (const XMLTree &tree) {
  const AString a ("a");
  size_t depth = 0;
  for (const XMLTree *t = &tree; t->has_child (a); t = &t->child (a))
    ++depth;
  return depth;
}

TEST (XMLDeep, AMessageAsDeepAsTheBufferIsTreatedWithoutRecursion) {
  on_small_stack ([] {
    const std::string bytes = nested (deepest);
    ASSERT_LE (bytes.size (), 32768u);
    ASSERT_GT (bytes.size (), 32768u - 16);
    XMLTree tree = received (bytes);
    ASSERT_FALSE (tree.is_null ());
    EXPECT_EQ (depth_of (tree), deepest);
    const XMLTree again = received (bytes);
    EXPECT_TRUE (tree == again);
    const XMLTree copy = tree;
    tree.child_ptr ("a")->set_text ("short");
    EXPECT_EQ (depth_of (tree), 1u);
    EXPECT_TRUE (copy == again);
    EXPECT_EQ (copy.render_text (XMLCompact, false).to_std_string (), bytes);
  });
}

TEST (XMLDeep, RefusedMessagesOfAnyDepthToo) {
  on_small_stack ([] {
    std::string open = "<reply>", wrong = nested (deepest - 20);
    while (open.size () < 32768 - 20)
      open += "<a>";
    EXPECT_TRUE (received (open + "</reply>").is_null ());
    wrong.replace (wrong.size () - 8, 8, "<b>x</a></reply>");
    EXPECT_TRUE (received (wrong).is_null ());
  });
}

TEST (XMLDeep, FormatsOfADeepTree) {
  on_small_stack ([] {
    const XMLTree tree = received (nested (1000));
    ByteCount lines, indented;
    tree.write_to (lines.take (), XMLLines, true);
    EXPECT_EQ (lines.bytes, 15u + 999 * 7 + 5 + 4 * 1000);
    tree.write_to (indented.take (), XMLIndented, true);
    EXPECT_EQ (indented.bytes, lines.bytes + 4 * (1000 + 2 * (999 * 1000 / 2)));
    EXPECT_EQ (tree.render (XMLCompact, true).size (), 3u + 999 * 3 + 3 + 999 * 3 + 3);
  });
}

TEST (XMLDeep, ATreeFarDeeperThanAnyMessage) {
  on_small_stack ([] {
    constexpr size_t levels = 20000;
    const auto build = [] (const char *text) {
      XMLTree tree ("leaf", text);
      for (size_t i = 0; i != levels; ++i)
        tree = XMLTree ("a", std::move (tree));
      return tree;
    };
    XMLTree tree = build ("x");
    const XMLTree copy = tree;
    EXPECT_TRUE (copy == build ("x"));
    EXPECT_FALSE (copy == build ("y"));
    XMLTree *innermost = &tree;
    while (XMLTree *child = innermost->child_ptr ("a"))
      innermost = child;
    innermost->child_ptr ("leaf")->set_text ("changed");
    EXPECT_FALSE (tree == copy);
    EXPECT_TRUE (tree == build ("changed"));
    tree = XMLTree ();
    EXPECT_EQ (depth_of (copy), levels - 1);
  });
}

TEST (XMLDeep, PartsOfADeepTreeOutliveIt) {
  on_small_stack ([] {
    XMLTree tree = received (nested (deepest));
    XMLTree part = tree.child ("a").child ("a");
    XMLTree::List list = tree.find_children ("a");
    tree = XMLTree ();
    EXPECT_EQ (depth_of (part), deepest - 2);
    part = XMLTree ();
    EXPECT_EQ (depth_of (list.at (0)), deepest - 1);
    list.clear ();
  });
}
} // namespace
