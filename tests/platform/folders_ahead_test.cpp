// Folders made ahead on a thread of their own: each is known made only once it is there, what was
// there already counts as made, and nothing behind the first failure is made.
#include "platform/folders_ahead.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

using qvtest::U16;

TEST(FoldersAhead, MakesInOrderAndStopsAtTheFirstFailure) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("file"), "x");
  qvtest::MakeDirs(dir.Sub("folder"));
  {
    // "file" and "folder" are there already; "a/b" is not a single name, so "late" must not come.
    FoldersAhead ahead(U16(dir.path()), {u"PG1", u"file", u"folder", u"PG2", u"a/b", u"late"});
    for (std::size_t i = 0; i < 4; ++i) EXPECT_TRUE(ahead.Wait(i)) << i;
    EXPECT_FALSE(ahead.Wait(4));
    EXPECT_FALSE(ahead.Wait(5));
    EXPECT_FALSE(ahead.Wait(6));
  }
  EXPECT_TRUE(qvtest::IsDir(dir.Sub("PG1")));
  EXPECT_TRUE(qvtest::IsDir(dir.Sub("PG2")));
  EXPECT_FALSE(qvtest::Exists(dir.Sub("late")));
}

TEST(FoldersAhead, WithdrawingRemovesOnlyWhatItMadeAheadOfTheCaller) {
  qvtest::ScratchDir dir;
  qvtest::MakeDirs(dir.Sub("d/kept"));
  FoldersAhead ahead(U16(dir.path()), {u"a", u"b", u"c", u"d"});
  ASSERT_TRUE(ahead.Wait(3));
  ahead.Withdraw(2);
  EXPECT_EQ(qvtest::ListDir(dir.path()), (std::vector<std::string>{"a/", "b/", "d/"}));
}

TEST(FoldersAhead, AParentThatCannotBeOpenedFailsTheFirst) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("file"), "x");
  for (const std::string& parent : {dir.Sub("missing"), dir.Sub("file")}) {
    FoldersAhead ahead(U16(parent), {u"PG1"});
    EXPECT_FALSE(ahead.Wait(0)) << parent;
  }
}

}  // namespace
}  // namespace quorvane::platform
