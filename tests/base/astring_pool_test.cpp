#include "base/astring_pool.h"

#include "base/astring.h"
#include "platform/sanitizers.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

constexpr size_t most = 1024;

TEST (AStringPool, KeepsTheStoreOfATextThatIsGone) {
  if (platform::under_address_sanitizer)
    GTEST_SKIP () << "keeps nothing here";
  std::vector<AString> texts;
  for (int i = 0; i != 100; ++i)
    texts.push_back (AString::from_uint32 (7));
  astring_pool::free_all ();
  texts.resize (60); // discarded
  EXPECT_EQ (astring_pool::free_all (), 40u);
  const AString other = std::move (texts.back ());
  texts.pop_back (); // moved from: has nothing to give back
  EXPECT_EQ (astring_pool::free_all (), 0u);
  texts[0] = other; // replaced
  EXPECT_EQ (astring_pool::free_all (), 1u);
  texts.resize (20);
  for (int i = 0; i != 30; ++i)
    texts.push_back (AString::from_uint32 (8));
  EXPECT_EQ (astring_pool::free_all (), 9u) << "30 of the 39 are in use again";
}

TEST (AStringPool, KeepsABoundedNumberOfBlocks) {
  std::vector<AString> texts;
  for (int i = 0; i != 3000; ++i)
    texts.push_back (AString::from_uint32 (7));
  texts.clear ();
  EXPECT_LE (astring_pool::free_all (), most);
}

TEST (AStringPool, GivesEachBlockToOneOfManyThreads) {
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread != 8; ++thread)
    threads.emplace_back ([thread] {
      std::vector<AString> texts;
      for (unsigned round = 0; round != 200; ++round) {
        for (unsigned i = 0; i != 1 + (round + thread) % 50; ++i)
          texts.push_back (AString::from_uint32 (thread * 1000 + i));
        for (unsigned i = 0; i != texts.size (); ++i)
          ASSERT_EQ (texts[i], AString::from_uint32 (thread * 1000 + i));
        texts.clear ();
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
}

// The text that is freed on one thread is made on another.
TEST (AStringPool, TakesBlocksBackFromAnyThread) {
  for (unsigned round = 0; round != 20; ++round) {
    std::vector<AString> texts;
    for (unsigned i = 0; i != 200; ++i)
      texts.push_back (AString::from_uint32 (i));
    std::thread ([&] {
      for (unsigned i = 0; i != texts.size (); ++i)
        EXPECT_EQ (texts[i], AString::from_uint32 (i));
      texts.clear ();
    }).join ();
  }
}

} // namespace
