#include "api/basics/results.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST (Results, EachFactoryGivesItsCodeAndText) {
  struct Row {
    ResultCode (*make) ();
    ResultCode code;
    const char *text;
  };
  const Row rows[] = {
      {result_ok, 0, "OK"},
      {result_no_connection, 1, "No connection to server"},
      {result_invalid_handle, 3, "Invalid handle"},
      {result_read_only, 4, "Read only"},
      {result_timeout, 5, "Timeout"},
      {result_invalid_argument, 6, "Invalid argument"},
      {result_write_only, 7, "Write only"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ (row.make (), row.code);
    EXPECT_EQ (last_error_text (), row.text);
  }
  EXPECT_EQ (result_error ("Channel 8 does not exist"), 2u);
  EXPECT_EQ (last_error_text (), "Channel 8 does not exist");
  EXPECT_EQ (result_internal_error (), 2u);
  EXPECT_EQ (last_error_text (), "Internal software error");
  EXPECT_EQ (make_result (7, "anything"), 7u);
  EXPECT_EQ (last_error_text (), "anything");
  EXPECT_EQ (last_error_text (), "anything");
}

TEST (Results, AreEachThreadsOwn) {
  result_ok ();
  std::thread ([] {
    result_error ("of another thread");
    EXPECT_EQ (last_error_text (), "of another thread");
  }).join ();
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (LastText, IsTheLastOneOfEitherKind) {
  static const AString constant = "a constant";
  LastText last;
  EXPECT_EQ (last.text (), "");
  last.record_constant (constant);
  EXPECT_EQ (last.text (), "a constant");
  EXPECT_TRUE (last.text ().shares_store_with (constant));
  last.record ("one of its own");
  EXPECT_EQ (last.text (), "one of its own");
  last.record ("");
  EXPECT_EQ (last.text (), "");
  last.record_constant (constant);
  EXPECT_EQ (last.text (), "a constant");
}

TEST (LastErrorTable, AnEntryStaysWhereItIs) {
  LastErrorTable table;
  LastText *const first = &table.of (1);
  for (uint32_t thread = 2; thread != 500; ++thread)
    table.record (thread, "another");
  EXPECT_EQ (&table.of (1), first);
  first->record ("one");
  EXPECT_EQ (table.text (1), "one");
}

TEST (LastErrorTable, KeepsATextForEachThreadForEver) {
  LastErrorTable table;
  EXPECT_TRUE (table.text (1).is_empty ());
  table.record (1, "one");
  table.record (2, "two");
  EXPECT_EQ (table.text (1), "one");
  EXPECT_EQ (table.text (2), "two");
  table.record (1, "three");
  // A thread that ends leaves its text to the next one with its number.
  EXPECT_EQ (table.text (1), "three");
  EXPECT_EQ (table.text (2), "two");
  EXPECT_TRUE (table.text (3).is_empty ());
}

TEST (LastErrorTable, IsTheSameForTheWholeProcess) {
  EXPECT_EQ (&LastErrorTable::instance (), &LastErrorTable::instance ());
}

} // namespace
