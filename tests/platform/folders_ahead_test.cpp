// Folders made ahead on a thread of their own: each is known made only once it is there, what was
// there already counts as made, and nothing behind the first failure is made.
#include "platform/folders_ahead.h"

#include "tests/support/test_support.h"

namespace quorvane::platform {
namespace {

TEST(FoldersAhead, MakesInOrderAndStopsAtTheFirstFailure) {
  qvtest::ScratchDir dir;
  qvtest::WriteFile(dir.Sub("file"), "x");
  qvtest::MakeDirs(dir.Sub("folder"));
  {
    // "file" and "folder" are there already; "a/b" is not a single name, so "late" must not come.
    FoldersAhead ahead(qvtest::U16(dir.path()),
                       {u"PG1", u"file", u"folder", u"PG2", u"a/b", u"late"});
    for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(ahead.Wait(i), i < 4) << i;
  }
  EXPECT_TRUE(qvtest::IsDir(dir.Sub("PG1")) && qvtest::IsDir(dir.Sub("PG2")));
  EXPECT_FALSE(qvtest::Exists(dir.Sub("late")));
  // A parent that cannot be opened fails the first.
  for (const std::string& parent : {dir.Sub("missing"), dir.Sub("file")})
    EXPECT_FALSE(FoldersAhead(qvtest::U16(parent), {u"PG1"}).Wait(0)) << parent;
}

}  // namespace
}  // namespace quorvane::platform
