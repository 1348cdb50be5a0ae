#include "base/aref.h"
#include "base/bsem.h"
#include "base/ns_list.h"
#include "platform/threads.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Words = nonstd_list<std::string>;

std::vector<std::string> values (const Words &list) {
  return {list.begin (), list.end ()};
}

std::vector<std::string> backwards (const Words &list) {
  std::vector<std::string> all;
  Words::Entry e;
  for (auto i = list.begin (); i != list.end (); ++i)
    e = i.entry ();
  for (; e != nullptr; e = e->previous)
    all.push_back (e->value);
  return all;
}

Words words (std::initializer_list<const char *> all) {
  Words list;
  for (const char *word : all)
    list.push_back (word);
  return list;
}

struct Counted {
  explicit Counted (atomic_unsigned &count) : live (&count) { ++count; }
  Counted (const Counted &other) : live (other.live) { ++*live; }
  Counted &operator= (const Counted &) = default;
  ~Counted () { --*live; }
  atomic_unsigned *live;
};

struct Tree {
  static constexpr bool holds_lists = true;
  std::string name;
  cow_list<Tree> children;
};

Tree chain (int depth) {
  Tree tree;
  for (int i = 0; i < depth; ++i) {
    Tree parent;
    parent.children.write ().push_back (std::move (tree));
    tree = std::move (parent);
  }
  return tree;
}

} // namespace

TEST (NonstdList, PushesAtBothEnds) {
  Words list;
  list.push_front ("b");
  list.push_back ("c");
  list.push_front ("a");
  EXPECT_EQ (list.size (), 3u);
  EXPECT_EQ (values (list), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ (backwards (list), (std::vector<std::string>{"c", "b", "a"}));
  EXPECT_EQ (list.at (0), "a");
  EXPECT_EQ (list.at (2), "c");
}

TEST (NonstdList, TheFirstEntryIsTheLastToo) {
  Words back;
  back.push_back ("x");
  EXPECT_EQ (backwards (back), (std::vector<std::string>{"x"}));
  EXPECT_EQ (back.begin ().entry ()->next, nullptr);
  Words front;
  front.push_front ("x");
  front.push_back ("y");
  EXPECT_EQ (backwards (front), (std::vector<std::string>{"y", "x"}));
}

TEST (NonstdList, ClearLeavesNoEntryAlive) {
  atomic_unsigned live;
  {
    nonstd_list<Counted> list;
    for (int i = 0; i < 3; ++i)
      list.push_back (Counted (live));
    EXPECT_EQ (live.load (), 3u);
    list.clear ();
    EXPECT_EQ (live.load (), 0u);
    EXPECT_EQ (list.size (), 0u);
    EXPECT_TRUE (list.begin () == list.end ());
    list.push_back (Counted (live));
    list.push_front (Counted (live));
  }
  EXPECT_EQ (live.load (), 0u);
}

TEST (NonstdList, NullEntriesAreAnAssertion) {
  AssertCounter failures;
  Words list = words ({"a"});
  list.push_back (Words::Entry ());
  EXPECT_EQ (failures.take (), 1u);
  list.push_front (Words::Entry ());
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_EQ (values (list), (std::vector<std::string>{"a"}));
}

TEST (NonstdList, CursorsHoldTheirEntry) {
  Words list = words ({"a", "b"});
  auto cursor = list.begin ();
  list.clear ();
  EXPECT_EQ (*cursor, "a");
  EXPECT_EQ (cursor->size (), 1u);
  ++cursor;
  EXPECT_TRUE (cursor == list.end ());
  ++cursor;
  EXPECT_TRUE (cursor == list.end ());
}

TEST (NonstdList, CursorsChangeValues) {
  Words list = words ({"a", "b"});
  for (std::string &value : list)
    value += "!";
  EXPECT_EQ (values (list), (std::vector<std::string>{"a!", "b!"}));
}

TEST (NonstdList, CopiesAreNewEntriesInOrder) {
  Words list = words ({"a", "b"});
  Words copy = list;
  copy.at (0) = "x";
  copy.push_back ("c");
  EXPECT_EQ (values (list), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ (values (copy), (std::vector<std::string>{"x", "b", "c"}));
  list = copy;
  EXPECT_EQ (values (list), (std::vector<std::string>{"x", "b", "c"}));
}

TEST (NonstdList, MovesLeaveTheSourceEmpty) {
  Words list = words ({"a", "b"});
  Words moved = std::move (list);
  EXPECT_EQ (list.size (), 0u);
  EXPECT_EQ (values (list), std::vector<std::string> ());
  EXPECT_EQ (values (moved), (std::vector<std::string>{"a", "b"}));
  list = std::move (moved);
  EXPECT_EQ (values (list), (std::vector<std::string>{"a", "b"}));
}

TEST (NonstdList, AppendsInOnePiece) {
  Words list;
  list.append (words ({"a", "b"}));
  list.append (words ({}));
  list.append (words ({"c"}));
  EXPECT_EQ (list.size (), 3u);
  EXPECT_EQ (values (list), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ (backwards (list), (std::vector<std::string>{"c", "b", "a"}));
}

TEST (NonstdList, TakesFromTheFront) {
  Words list = words ({"a", "b", "c"});
  EXPECT_EQ (list.take_front ()->value, "a");
  EXPECT_EQ (values (list), (std::vector<std::string>{"b", "c"}));
  EXPECT_EQ (backwards (list), (std::vector<std::string>{"c", "b"}));
  EXPECT_EQ (list.take_front ()->value, "b");
  EXPECT_EQ (list.take_front ()->value, "c");
  EXPECT_EQ (list.take_front (), nullptr);
  EXPECT_EQ (list.size (), 0u);
  list.push_back ("d");
  EXPECT_EQ (backwards (list), (std::vector<std::string>{"d"}));
}

TEST (NonstdList, LongListsGoWithoutRecursion) {
  bsem done (false);
  ASSERT_TRUE (platform::thread_start (
      [] (void *finished) {
        {
          nonstd_list<int> list;
          for (int i = 0; i < 100000; ++i)
            list.push_back (i);
        }
        static_cast<bsem *> (finished)->post ();
      },
      &done));
  EXPECT_TRUE (done.wait (60000));
}

TEST (CowList, CopiesPartWhenOneWrites) {
  cow_list<std::string> first (words ({"a"}));
  cow_list<std::string> copy = first;
  EXPECT_EQ (&first.read (), &copy.read ());
  copy.write ().push_back ("b");
  EXPECT_EQ (first.size (), 1u);
  EXPECT_EQ (copy.size (), 2u);
  EXPECT_NE (&first.read (), &copy.read ());
}

TEST (CowList, ASoleOwnerWritesInPlace) {
  cow_list<std::string> list;
  Words *own = &list.write ();
  own->push_back ("a");
  EXPECT_EQ (&list.write (), own);
  { cow_list<std::string> copy = list; }
  EXPECT_EQ (&list.write (), own);
}

TEST (CowList, EmptyOnesReadOneImmortalList) {
  cow_list<std::string> one;
  cow_list<std::string> two;
  EXPECT_EQ (&one.read (), &two.read ());
  EXPECT_EQ (&one.read (), &empty_nonstd_list<std::string> ());
  EXPECT_TRUE (one.is_empty ());
  EXPECT_EQ (one.read ().size (), 0u);
  one.write ().push_back ("a");
  EXPECT_TRUE (two.is_empty ());
  one.clear ();
  EXPECT_EQ (&one.read (), &two.read ());
}

TEST (CowList, TakesTheEntriesOrCopies) {
  cow_list<std::string> list (words ({"a", "b"}));
  auto entry = list.read ().begin ().entry ();
  cow_list<std::string> copy = list;
  Words copied = list.take ();
  EXPECT_TRUE (list.is_empty ());
  EXPECT_EQ (values (copied), (std::vector<std::string>{"a", "b"}));
  EXPECT_NE (copied.begin ().entry (), entry);
  Words taken = copy.take ();
  EXPECT_TRUE (copy.is_empty ());
  EXPECT_EQ (taken.begin ().entry (), entry);
}

TEST (CowList, CopiesOnTwoThreadsAreApart) {
  for (int round = 0; round < 200; ++round) {
    cow_list<std::string> here (words ({"a"}));
    std::thread other ([there = here] () mutable {
      std::string seen = there.read ().at (0);
      there.clear ();
    });
    here.write ().at (0) = "b";
    EXPECT_EQ (here.read ().at (0), "b");
    other.join ();
  }
}

TEST (CowList, DeepTreesGoOnASmallStack) {
  bsem done (false);
  ASSERT_TRUE (platform::thread_start (
      [] (void *finished) {
        {
          Tree tree = chain (50000);
          Tree copy = tree;
          copy.name = "copy";
          tree = Tree ();
          cow_list<Tree> kept = copy.children;
          copy = Tree ();
          EXPECT_EQ (kept.size (), 1u);
        }
        static_cast<bsem *> (finished)->post ();
      },
      &done));
  EXPECT_TRUE (done.wait (60000));
}

TEST (CowList, DeepTreesSharedByThreadsGoOnceEach) {
  for (int round = 0; round < 20; ++round) {
    Tree tree = chain (3000);
    std::thread other ([copy = tree] () mutable { copy = Tree (); });
    tree = Tree ();
    other.join ();
  }
}
