#include "base/kelvane_assert.h"
#include "support/assert_counter.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

struct Shown {
  const char *expression = nullptr;
  const char *file = nullptr;
  unsigned line = 0;
};
Shown shown;

void show (const char *expression, const char *file, unsigned line) {
  shown = {expression, file, line};
}

Shown shown_by (bool (*report) (const char *, unsigned, const char *)) {
  auto before = kelvane_assert_handler.exchange (&show);
  EXPECT_FALSE (report ("elsewhere.cpp", 1234, "x > y"));
  kelvane_assert_handler.store (before);
  return shown;
}

bool ends_with (const char *text, const char *end) {
  return std::strlen (text) >= std::strlen (end) &&
         std::strcmp (text + std::strlen (text) - std::strlen (end), end) == 0;
}

} // namespace

TEST (Assert, EveryFailureShowsOnePlaceAndOneExpression) {
  Shown statement = shown_by (kelvane_assert_report);
  EXPECT_STREQ (statement.expression, "0");
  EXPECT_TRUE (ends_with (statement.file, "base/kelvane_assert.cpp")) << statement.file;
  EXPECT_EQ (statement.line, 9u);
  Shown value = shown_by (kelvane_assert_report_value);
  EXPECT_STREQ (value.expression, "0");
  EXPECT_STREQ (value.file, statement.file);
  EXPECT_EQ (value.line, 15u);
}

TEST (Assert, IsAnExpressionWithARecoveryPath) {
  AssertCounter failures;
  int evaluations = 0;
  EXPECT_TRUE (KELVANE_ASSERT (++evaluations == 1));
  EXPECT_EQ (failures.count (), 0u);
  EXPECT_FALSE (KELVANE_ASSERT (++evaluations == 1));
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_EQ (failures.last_line (), 9u);
  EXPECT_FALSE (KELVANE_ASSERT_VALUE (++evaluations == 1));
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_EQ (failures.last_line (), 15u);
  EXPECT_EQ (evaluations, 3);
}

TEST (Assert, CounterPutsTheFormerHandlerBack) {
  auto before = kelvane_assert_handler.load ();
  {
    AssertCounter failures;
    EXPECT_NE (kelvane_assert_handler.load (), before);
  }
  EXPECT_EQ (kelvane_assert_handler.load (), before);
}

TEST (AssertDeathTest, TheDefaultHandlerTellsThePlaceAndEndsTheProcess) {
  GTEST_FLAG_SET (death_test_style, "threadsafe");
  EXPECT_DEATH ((void)KELVANE_ASSERT (1 > 2), "kelvane_assert\\.cpp.*9");
  EXPECT_DEATH ((void)KELVANE_ASSERT_VALUE (1 > 2), "kelvane_assert\\.cpp.*15");
}
