#include "xml/xml_tree.h"

#include "support/assert_counter.h"
#include "xml/xml_attributes.h"
#include "xml/xml_children.h"

#include <gtest/gtest.h>

#include <thread>

namespace {
std::string s (const AString &text) {
  return text.to_std_string ();
}

std::string compact (const XMLTree &tree) {
  return s (tree.render_text (XMLCompact, true));
}

/// The names of some trees in order, with a blank behind each.
std::string names (const XMLTree::List &list) {
  std::string all;
  for (const XMLTree &tree : list)
    all += s (tree.name ()) + " ";
  return all;
}

XMLTree abab () {
  XMLTree tree ("r");
  tree.add_child (XMLTree ("a", "1"));
  tree.add_child (XMLTree ("b", "2"));
  tree.add_child (XMLTree ("a", "3"));
  tree.add_child (XMLTree ("b", "4"));
  return tree;
}

TEST (XMLTree, DefaultIsTheNullTree) {
  const XMLTree tree;
  EXPECT_TRUE (tree.is_null ());
  EXPECT_EQ (s (tree.name ()), "");
  EXPECT_EQ (s (tree.text ()), "");
  EXPECT_FALSE (tree.has_children ());
  EXPECT_EQ (tree.children ().size (), 0u);
  EXPECT_TRUE (tree.attributes ().empty ());
  EXPECT_FALSE (tree.has_child ("a"));
  EXPECT_TRUE (tree.child ("a").is_null ());
  EXPECT_EQ (tree.count_children ("a"), 0u);
}

TEST (XMLTree, ConstructorsMakeTreesThatAreNotNull) {
  EXPECT_FALSE (XMLTree ("a").is_null ());
  EXPECT_EQ (compact (XMLTree ("a")), "<a />");
  EXPECT_EQ (compact (XMLTree ("a", "text")), "<a>text</a>");
  EXPECT_EQ (compact (XMLTree ("a", XMLTree ("b", "x"))), "<a><b>x</b></a>");
  const XMLTree child ("c", "y");
  EXPECT_EQ (compact (XMLTree ("a", child)), "<a><c>y</c></a>");
  EXPECT_EQ (s (child.text ()), "y");
}

TEST (XMLTree, ConstructorsFromListsKeepTheOrder) {
  const XMLTree::List list = make_child_list (XMLTree ("x", "1"), XMLTree ("y", "2"));
  EXPECT_EQ (names (list), "x y ");
  EXPECT_EQ (compact (XMLTree ("a", list)), "<a><x>1</x><y>2</y></a>");
  EXPECT_EQ (list.size (), 2u);
  EXPECT_EQ (compact (XMLTree ("a", make_child_list (XMLTree ("p"), XMLTree ("o")))), "<a><p /><o /></a>");
  EXPECT_FALSE (XMLTree ("a", XMLTree::List ()).has_children ());
}

TEST (XMLTree, NumbersAreDecimal) {
  EXPECT_EQ (s (XMLTree ("n", uint64_t{0}).text ()), "0");
  EXPECT_EQ (s (XMLTree ("n", UINT64_MAX).text ()), "18446744073709551615");
  EXPECT_EQ (s (XMLTree ("n", UINT32_MAX).text ()), "4294967295");
  EXPECT_EQ (s (XMLTree ("n", uint32_t{7}).text ()), "7");
  EXPECT_EQ (s (XMLTree ("n", int64_t{-5}).text ()), "-5");
  EXPECT_EQ (s (XMLTree ("n", INT64_MIN).text ()), "-9223372036854775808");
}

TEST (XMLTree, NamesAreComparedExactly) {
  const XMLTree tree ("Speed");
  EXPECT_TRUE (tree.name_is ("Speed"));
  EXPECT_FALSE (tree.name_is ("speed"));
  EXPECT_FALSE (tree.name_is ("Spee"));
  EXPECT_FALSE (tree.name_is ("Speeds"));
}

TEST (XMLTree, TemporariesGiveTheirStringsAway) {
  const AString name = XMLTree ("n", "t").name ();
  const AString text = XMLTree ("n", "t").text ();
  EXPECT_EQ (s (name), "n");
  EXPECT_EQ (s (text), "t");
}

TEST (XMLTree, StringsShareTheirStoreUpToThirtyTwoOfSlack) {
  const AString store = AString ("x") * 100;
  const XMLTree shared (store.left (68), store.right (68));
  EXPECT_TRUE (shared.name ().shares_store_with (store));
  EXPECT_TRUE (shared.text ().shares_store_with (store));
  const XMLTree tight (store.left (67), store.right (67));
  EXPECT_FALSE (tight.name ().shares_store_with (store));
  EXPECT_FALSE (tight.text ().shares_store_with (store));
  EXPECT_EQ (tight.name ().store_length (), 67u);
  EXPECT_EQ (tight.text ().store_length (), 67u);
  EXPECT_TRUE (tight.name () == AString ("x") * 67);
}

TEST (XMLTree, SetTextKeepsTheSameSlack) {
  const AString store = AString ("x") * 100;
  XMLTree tree ("a");
  tree.set_text (store.left (68));
  EXPECT_TRUE (tree.text ().shares_store_with (store));
  tree.set_text (store.left (67));
  EXPECT_EQ (tree.text ().store_length (), 67u);
}

TEST (XMLTree, SetTextEmptiesTheChildList) {
  XMLTree tree = abab ();
  tree.set_text ("t");
  EXPECT_EQ (compact (tree), "<r>t</r>");
  EXPECT_EQ (tree.children ().size (), 0u);
}

TEST (XMLTree, AddChildAppendsWhateverIsThere) {
  XMLTree tree = abab ();
  tree.add_child (XMLTree ("a", "5"));
  EXPECT_EQ (names (tree.children ()), "a b a b a ");
}

TEST (XMLTree, ATreeCanBecomeAChildOfItself) {
  XMLTree tree ("a", XMLTree ("b"));
  tree.add_child (tree);
  EXPECT_EQ (compact (tree), "<a><b /><a><b /></a></a>");
  tree.set_child (tree.child ("a"));
  EXPECT_EQ (compact (tree), "<a><b /><a><b /></a></a>");
}

TEST (XMLTree, HasChildLooksAtDirectChildrenOnly) {
  const XMLTree tree ("a", XMLTree ("b", XMLTree ("c")));
  EXPECT_TRUE (tree.has_child ("b"));
  EXPECT_FALSE (tree.has_child ("c"));
  EXPECT_FALSE (tree.has_child ("B"));
}

TEST (XMLTree, CountChildrenCopiesTheFirstOnly) {
  const XMLTree tree = abab ();
  XMLTree first;
  EXPECT_EQ (tree.count_children ("b", &first), 2u);
  EXPECT_EQ (compact (first), "<b>2</b>");
  EXPECT_EQ (tree.count_children ("a", nullptr), 2u);
  EXPECT_EQ (tree.count_children ("c", &first), 0u);
  EXPECT_EQ (compact (first), "<b>2</b>");
}

TEST (XMLTree, CountChildrenMayOverwriteTheTreeItself) {
  XMLTree tree = abab ();
  EXPECT_EQ (tree.count_children ("a", &tree), 2u);
  EXPECT_EQ (compact (tree), "<a>1</a>");
}

TEST (XMLTree, FindChildrenKeepsTheOrder) {
  const XMLTree::List found = abab ().find_children ("b");
  ASSERT_EQ (found.size (), 2u);
  EXPECT_EQ (s (found.at (0).text ()), "2");
  EXPECT_EQ (s (found.at (1).text ()), "4");
  EXPECT_EQ (abab ().find_children ("c").size (), 0u);
}

TEST (XMLTree, ChildIsTheFirstOrTheOneConstantNullTree) {
  const XMLTree tree = abab ();
  EXPECT_EQ (s (tree.child ("a").text ()), "1");
  EXPECT_TRUE (tree.child ("c").is_null ());
  EXPECT_EQ (&tree.child ("c"), &XMLTree ("other").child ("d"));
}

TEST (XMLTree, ChildPtrChangesInPlace) {
  XMLTree tree = abab ();
  XMLTree *b = tree.child_ptr ("b");
  ASSERT_NE (b, nullptr);
  b->set_text ("changed");
  EXPECT_EQ (compact (tree), "<r><a>1</a><b>changed</b><a>3</a><b>4</b></r>");
  EXPECT_EQ (tree.child_ptr ("c"), nullptr);
}

TEST (XMLTree, AMissedChildPtrCopiesNothing) {
  XMLTree tree = abab ();
  const XMLTree copy = tree;
  EXPECT_EQ (tree.child_ptr ("c"), nullptr);
  EXPECT_EQ (&tree.children (), &copy.children ());
}

TEST (XMLTree, SetChildChangesTheFirstOfAName) {
  XMLTree tree = abab ();
  tree.set_child (XMLTree ("b", "new"));
  EXPECT_EQ (compact (tree), "<r><a>1</a><b>new</b><a>3</a><b>4</b></r>");
  tree.set_child ("a", make_child_list (XMLTree ("p"), XMLTree ("q")));
  EXPECT_EQ (compact (tree), "<r><a><p /><q /></a><b>new</b><a>3</a><b>4</b></r>");
}

TEST (XMLTree, SetChildReplacesChildrenAndTextBoth) {
  XMLTree tree ("r", XMLTree ("a", XMLTree ("inner")));
  tree.set_child ("a", "text");
  EXPECT_FALSE (tree.child ("a").has_children ());
  EXPECT_EQ (s (tree.child ("a").text ()), "text");
  tree.set_child (XMLTree ("a", XMLTree ("inner")));
  EXPECT_EQ (s (tree.child ("a").text ()), "");
  EXPECT_EQ (compact (tree), "<r><a><inner /></a></r>");
}

TEST (XMLTree, SetChildAppendsWhatIsNotThere) {
  XMLTree tree ("r");
  tree.set_child ("a", "1");
  tree.set_child ("b", XMLTree::List ());
  EXPECT_EQ (compact (tree), "<r><a>1</a><b /></r>");
}

TEST (XMLTree, SetChildKeepsTheAttributesOfTheChildThatWasThere) {
  XMLTree old ("a", "1"), fresh ("a", "2");
  XMLTreeAttributes::set (old, "id", "old");
  XMLTreeAttributes::set (fresh, "id", "new");
  XMLTree tree ("r", old);
  tree.set_child (fresh);
  EXPECT_EQ (compact (tree), "<r><a id=\"old\">2</a></r>");
}

TEST (XMLTree, RemoveChildrenTakesAllOfAName) {
  XMLTree tree = abab ();
  EXPECT_EQ (tree.remove_children ("a"), 2u);
  EXPECT_EQ (compact (tree), "<r><b>2</b><b>4</b></r>");
  EXPECT_EQ (tree.remove_children ("b"), 2u);
  EXPECT_FALSE (tree.has_children ());
  EXPECT_EQ (compact (tree), "<r />");
}

TEST (XMLTree, RemovingAnAbsentNameKeepsTheList) {
  XMLTree tree = abab ();
  const XMLTree copy = tree;
  EXPECT_EQ (tree.remove_children ("c"), 0u);
  EXPECT_EQ (&tree.children (), &copy.children ());
}

TEST (XMLTree, CopiesShareUntilOneIsChanged) {
  XMLTree tree = abab ();
  XMLTree copy = tree;
  EXPECT_EQ (&tree.children (), &copy.children ());
  copy.child_ptr ("a")->set_text ("copy");
  EXPECT_EQ (compact (tree), "<r><a>1</a><b>2</b><a>3</a><b>4</b></r>");
  EXPECT_EQ (compact (copy), "<r><a>copy</a><b>2</b><a>3</a><b>4</b></r>");
  tree.add_child (XMLTree ("c"));
  EXPECT_EQ (copy.children ().size (), 4u);
}

TEST (XMLTree, AChangeDeepDownLeavesTheCopyAlone) {
  XMLTree tree ("a", XMLTree ("b", XMLTree ("c", "1")));
  const XMLTree copy = tree;
  tree.child_ptr ("b")->child_ptr ("c")->set_text ("2");
  EXPECT_EQ (compact (copy), "<a><b><c>1</c></b></a>");
  EXPECT_EQ (compact (tree), "<a><b><c>2</c></b></a>");
}

TEST (XMLTree, CopyAndAssignmentCarryAllFields) {
  XMLTree tree = abab ();
  XMLTreeAttributes::set (tree, "id", "1");
  const XMLTree copy (tree);
  XMLTree assigned ("other", "text");
  assigned = tree;
  EXPECT_TRUE (copy == tree);
  EXPECT_TRUE (assigned == tree);
  EXPECT_EQ (compact (assigned), "<r id=\"1\"><a>1</a><b>2</b><a>3</a><b>4</b></r>");
  assigned = XMLTree ();
  EXPECT_TRUE (assigned.is_null ());
  EXPECT_TRUE (assigned == XMLTree ());
}

TEST (XMLTree, MovesLeaveTheNullTree) {
  XMLTree tree = abab ();
  XMLTree moved (std::move (tree));
  EXPECT_TRUE (tree.is_null ()); // NOLINT: what a move leaves is promised
  EXPECT_TRUE (tree == XMLTree ());
  EXPECT_EQ (moved.children ().size (), 4u);
  tree = std::move (moved);
  EXPECT_EQ (tree.children ().size (), 4u);
  EXPECT_TRUE (moved.is_null ()); // NOLINT
}

TEST (XMLTree, ATreeCanBeAssignedItsOwnChild) {
  XMLTree tree ("a", XMLTree ("b", XMLTree ("c", "x")));
  tree = tree.child ("b");
  EXPECT_EQ (compact (tree), "<b><c>x</c></b>");
  tree = std::move (*tree.child_ptr ("c"));
  EXPECT_EQ (compact (tree), "<c>x</c>");
  XMLTree &same = tree;
  tree = same;
  EXPECT_EQ (compact (tree), "<c>x</c>");
}

TEST (XMLTree, ChangesToTheNullTreeHaveNoEffect) {
  XMLTree tree;
  tree.set_text ("t");
  tree.add_child (XMLTree ("a"));
  tree.set_child (XMLTree ("a"));
  EXPECT_EQ (tree.remove_children ("a"), 0u);
  EXPECT_TRUE (tree == XMLTree ());
}

TEST (XMLTree, EqualityLooksAtEverything) {
  EXPECT_TRUE (abab () == abab ());
  EXPECT_TRUE (XMLTree () == XMLTree ());
  EXPECT_FALSE (XMLTree () == XMLTree (AString ()));
  EXPECT_FALSE (XMLTree ("a") == XMLTree ("b"));
  EXPECT_FALSE (XMLTree ("a", "1") == XMLTree ("a", "2"));
  EXPECT_FALSE (XMLTree ("a", "1") == XMLTree ("a"));
  EXPECT_FALSE (XMLTree ("a", XMLTree ("b")) == XMLTree ("a"));
  EXPECT_FALSE (XMLTree ("a", XMLTree ("b", XMLTree ("c", "1"))) ==
                XMLTree ("a", XMLTree ("b", XMLTree ("c", "2"))));
  EXPECT_FALSE (XMLTree ("a", make_child_list (XMLTree ("b"), XMLTree ("c"))) ==
                XMLTree ("a", make_child_list (XMLTree ("c"), XMLTree ("b"))));
  XMLTree with = XMLTree ("a");
  XMLTreeAttributes::set (with, "id", "1");
  EXPECT_FALSE (with == XMLTree ("a"));
  EXPECT_TRUE (with == XMLTree (with));
}

TEST (XMLTree, EqualityComesBackFromInnerChildren) {
  const auto make = [] (const char *last) {
    XMLTree tree ("a", XMLTree ("b", make_child_list (XMLTree ("c"), XMLTree ("d", "1"))));
    tree.add_child (XMLTree ("e", last));
    return tree;
  };
  EXPECT_TRUE (make ("x") == make ("x"));
  EXPECT_FALSE (make ("x") == make ("y"));
}

TEST (XMLTree, PlainWalkGivesTheChildrenInOrder) {
  const XMLTree tree = abab ();
  std::string texts;
  for (const XMLTree &child : XMLChildren (tree))
    texts += s (child.text ());
  EXPECT_EQ (texts, "1234");
  EXPECT_EQ (XMLChildren (tree).begin ()->name (), AString ("a"));
  EXPECT_TRUE (XMLChildren (XMLTree ("leaf")).begin () == XMLChildren (XMLTree ("leaf")).end ());
}

TEST (XMLTree, CopiesLiveOnDifferentThreads) {
  const XMLTree tree = abab ();
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int i = 0; i != 4; ++i)
    threads.emplace_back ([copy = tree, &right] () mutable {
      for (int round = 0; round != 200; ++round) {
        XMLTree own = copy;
        own.child_ptr ("a")->set_text ("mine");
        own.add_child (XMLTree ("c"));
        right += own.children ().size () == 5 && copy.children ().size () == 4;
        right += compact (copy) == "<r><a>1</a><b>2</b><a>3</a><b>4</b></r>" && copy.child ("x").is_null ();
      }
    });
  for (std::thread &t : threads)
    t.join ();
  EXPECT_EQ (right.load (), 4 * 200 * 2);
}

TEST (XMLTree, TheLastCopyMayWriteInPlaceOnAnotherThread) {
  for (int round = 0; round != 100; ++round) {
    XMLTree tree = abab ();
    std::thread other ([copy = tree] () mutable { copy.child_ptr ("b")->set_text ("theirs"); });
    tree.child_ptr ("b")->set_text ("ours");
    other.join ();
    EXPECT_EQ (s (tree.child ("b").text ()), "ours");
  }
}
} // namespace
