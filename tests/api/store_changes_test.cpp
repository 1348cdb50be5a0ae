// The changes of a store until a caller takes them.
#include "api/stores/store_changes.h"
#include "base/astring.h"
#include "orva.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr uint32_t was_set = ORVA_STORE_CHANGE_SET, was_erased = ORVA_STORE_CHANGE_ERASE;

std::string ascii (std::u16string_view units) {
  return std::string (units.begin (), units.end ());
}

/// All changes as "key=value" or "key gone", with a blank behind each. None is left.
std::string taken (StoreChanges &changes) {
  std::string text;
  for (; !changes.is_empty (); changes.remove_first ()) {
    const StoreChange &change = changes.first ();
    text += ascii (change.key ());
    text += change.type () == was_set ? "=" + ascii (change.value ()) + " " : " gone ";
  }
  return text;
}

TEST (StoreChanges, AreTakenInTheOrderOfTheKeys) {
  StoreChanges changes;
  EXPECT_TRUE (changes.is_empty ());
  changes.add (was_set, u"k", u"1");
  changes.add (was_erased, u"j", u"");
  changes.add (was_set, u"l", u"");
  EXPECT_EQ (changes.size (), 3u);
  EXPECT_EQ (taken (changes), "k=1 j gone l= ");
  EXPECT_EQ (changes.size (), 0u);
}

TEST (StoreChanges, AKeyKeepsItsPlaceAndItsLastChange) {
  StoreChanges changes;
  changes.add (was_set, u"k", u"1");
  changes.add (was_set, u"l", u"1");
  changes.add (was_set, u"m", u"1");
  changes.add (was_erased, u"k", u"");
  changes.add (was_set, u"l", u"a value that is longer than the one before it");
  changes.add (was_erased, u"m", u"");
  changes.add (was_set, u"m", u"2");
  EXPECT_EQ (changes.size (), 3u);
  EXPECT_EQ (taken (changes), "k gone l=a value that is longer than the one before it m=2 ");
}

TEST (StoreChanges, AKeyThatWasTakenIsNewAgain) {
  StoreChanges changes;
  changes.add (was_set, u"k", u"1");
  changes.add (was_set, u"l", u"1");
  changes.remove_first ();
  changes.add (was_set, u"k", u"2");
  EXPECT_EQ (taken (changes), "l=1 k=2 ");
}

TEST (StoreChanges, KeepManyKeysOfAnyLength) {
  constexpr unsigned count = 3000;
  const auto key = [] (unsigned i) { return std::u16string (1 + i % 40, u'k') + char16_t (0x100 + i); };
  StoreChanges changes;
  for (unsigned round = 0; round != 3; ++round)
    for (unsigned i = 0; i != count; ++i)
      changes.add (was_set, key (i), std::u16string ((i + round) % 50, u'v'));
  ASSERT_EQ (changes.size (), count);
  for (unsigned i = 0; i != count; ++i, changes.remove_first ()) {
    ASSERT_TRUE (changes.first ().key () == key (i)) << i;
    ASSERT_EQ (changes.first ().value ().size (), (i + 2) % 50);
  }
}

TEST (StoreChanges, MayComeAndGoForLong) {
  StoreChanges changes;
  unsigned added = 0, taken = 0;
  for (unsigned round = 0; round != 200; ++round) {
    for (unsigned i = 0; i != 1 + round * 7 % 90; ++i, ++added)
      changes.add (was_set, AString::from_uint32 (added).to_u16string (), u"v");
    changes.add (was_erased, AString::from_uint32 (added - 1).to_u16string (), u"");
    for (unsigned i = 0; i != round * 11 % 90 && taken + 1 != added; ++i, ++taken, changes.remove_first ())
      ASSERT_EQ (ascii (changes.first ().key ()), std::to_string (taken));
    ASSERT_EQ (changes.size (), added - taken);
  }
  for (; taken != added; ++taken, changes.remove_first ())
    ASSERT_EQ (ascii (changes.first ().key ()), std::to_string (taken));
  EXPECT_TRUE (changes.is_empty ());
}

} // namespace
