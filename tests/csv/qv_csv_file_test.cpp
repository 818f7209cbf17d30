// The byte syntax of project CSV files: splitting, escapes, line ends, the
// line limit, code page 932 both ways, and the failure codes.
#include "csv/qv_csv_file.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/test_support.h"
#include "tests/csv/csv_test_util.h"

namespace quorvane::qvconv::io::csv {
namespace {

using Row = QvCsvFile::Row;
using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;

QvCsvFile Parse(std::string_view bytes) {
  QvCsvFile file;
  file.ReadBytes(bytes);
  return file;
}

Row Fields(std::initializer_list<std::string_view> utf8) {
  Row row;
  for (std::string_view f : utf8) row.push_back(U16(f));
  return row;
}

TEST(CsvFileSyntax, SplitsOnUnescapedCommas) {
  QvCsvFile file = Parse("a,b,\n,\n\nsingle\n");
  ASSERT_EQ(file.RowCount(), 4u);
  EXPECT_EQ(file.GetRow(0), Fields({"a", "b", ""}));
  EXPECT_EQ(file.GetRow(1), Fields({"", ""}));
  EXPECT_EQ(file.GetRow(2), Fields({""}));
  EXPECT_EQ(file.GetRow(3), Fields({"single"}));
  EXPECT_TRUE(file.GetRow(4).empty());
  EXPECT_TRUE(file.GetFirstField(99).empty());
  EXPECT_EQ(file.GetFirstField(0), u"a");
}

TEST(CsvFileSyntax, TwoEscapesAndTheirEdges) {
  EXPECT_EQ(Parse("a\\,b,c\\\\,d").GetRow(0), Fields({"a,b", "c\\", "d"}));
  EXPECT_EQ(Parse("a\\").GetRow(0), Fields({"a\\"}));
  EXPECT_EQ(Parse("\\\\\\").GetRow(0), Fields({"\\\\"}));
  EXPECT_EQ(Parse("x\\\\\\,y").GetRow(0), Fields({"x\\,y"}));
  EXPECT_EQ(CodeOf([] { Parse("a\\b"); }), -102);
  // A bad escape on a later line fails the whole read and keeps no rows.
  QvCsvFile file;
  EXPECT_EQ(CodeOf([&] { file.ReadBytes("ok\nbad\\x\n"); }), -102);
  EXPECT_EQ(file.RowCount(), 0u);
}

TEST(CsvFileSyntax, LineEndsAndNulBytes) {
  QvCsvFile file = Parse("a\r\nb\nc\r\n");
  ASSERT_EQ(file.RowCount(), 3u);
  EXPECT_EQ(file.GetFirstField(0), u"a");
  EXPECT_EQ(file.GetFirstField(2), u"c");
  EXPECT_EQ(Parse("").RowCount(), 0u);
  EXPECT_EQ(Parse("last").RowCount(), 1u);
  EXPECT_EQ(Parse(std::string("ab\0c,d\nnext", 11)).GetRow(0), Fields({"ab"}));
  EXPECT_EQ(Parse("a\r\nb\r\n\x1a").RowCount(), 2u);  // an end-of-file mark ends the text
  EXPECT_EQ(Parse("a\x1a,b\nc").GetRow(0), Fields({"a"}));
}

TEST(CsvFileSyntax, LineLimitEndsTheReadSilently) {
  std::string at_limit(1023, 'x');
  std::string over(1024, 'y');
  EXPECT_EQ(Parse(at_limit + "\r\nz\n").RowCount(), 2u);
  EXPECT_EQ(Parse(at_limit).GetFirstField(0).size(), 1023u);
  QvCsvFile file = Parse("first\n" + over + "\nthird\n");
  ASSERT_EQ(file.RowCount(), 1u);
  EXPECT_EQ(file.GetFirstField(0), u"first");
  EXPECT_EQ(Parse("a\n" + std::string(2000, 'q') + "\nc").RowCount(), 1u);
  // The limit counts bytes of code page 932, not characters: 512 double-byte
  // characters are 1024 bytes.
  std::string kana;
  for (int i = 0; i < 512; ++i) kana += Cp932("ア");
  EXPECT_EQ(Parse(kana).RowCount(), 0u);
  EXPECT_EQ(Parse(kana.substr(2)).RowCount(), 1u);
}

TEST(CsvFileSyntax, CodePage932TrailBackslashIsNoEscape) {
  // 表 and ソ end in the byte 0x5C, the code of a backslash.
  QvCsvFile file = Parse(Cp932("表示,ソフト\\,名\n"));
  EXPECT_EQ(file.GetRow(0), Fields({"表示", "ソフト,名"}));

  // A UTF-8 byte order mark is no mark here: its bytes lead the first field.
  std::u16string first = Parse("\xEF\xBB\xBF" "abc").GetFirstField(0);
  EXPECT_GT(first.size(), 3u);
  EXPECT_EQ(first.substr(first.size() - 3), u"abc");
}

TEST(CsvFileWrite, ExactBytesWithEscapesAndCrLf) {
  QvCsvFile file;
  file.AddRow(Fields({"表,示", "", "a\\b"}));
  file.AddRow({});
  file.AddRow(Fields({"\\,"}));
  EXPECT_EQ(file.WriteBytes(), Cp932("表\\,示,,a\\\\b\r\n\r\n\\\\\\,\r\n"));
}

TEST(CsvFileWrite, RoundTripThroughAFile) {
  qvtest::ScratchDir dir;
  std::u16string path = U16(dir.Sub("テスト.csv"));
  QvCsvFile out;
  Row tricky = Fields({"a\\", "\\,", ",", "", "x\\\\y", "予定表ソ", "\\"});
  out.AddRow(tricky);
  out.AddRow({});
  out.AddRow(Fields({"end"}));
  out.WriteFile(path);

  QvCsvFile in;
  in.ReadFile(path);
  ASSERT_EQ(in.RowCount(), 3u);
  EXPECT_EQ(in.GetRow(0), tricky);
  EXPECT_EQ(in.GetRow(1), Fields({""}));  // a row without fields comes back with one
  EXPECT_EQ(in.GetRow(2), Fields({"end"}));
}

TEST(CsvFileWrite, FailureCodes) {
  qvtest::ScratchDir dir;
  QvCsvFile file;
  EXPECT_EQ(CodeOf([&] { file.ReadFile(U16(dir.Sub("missing.csv"))); }), -101);
  EXPECT_EQ(CodeOf([&] { file.ReadFile(U16(dir.path())); }), -101);
  file.AddRow(Fields({"x"}));
  EXPECT_EQ(CodeOf([&] { file.WriteFile(U16(dir.Sub("no/such/folder.csv"))); }), -3);
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
