// The byte syntax of project CSV files: splitting, escapes, line ends, the
// line limit, code page 932 both ways, and the failure codes.
#include "csv/qv_csv_file.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/fake_env.h"
#include "tests/support/test_support.h"

namespace quorvane::qvconv::io::csv {
namespace {

using qvtest::CodeOf;
using qvtest::Cp932;
using qvtest::U16;

// The rows of `bytes` as UTF-8, fields ended by '|', rows by ';'.
std::string Rows(std::string_view bytes) {
  QvCsvFile file;
  file.ReadBytes(bytes);
  std::string text;
  for (std::size_t i = 0; i < file.RowCount(); ++i) {
    for (const std::u16string& field : file.GetRow(i)) text += qvtest::U8(field) + "|";
    text += ";";
  }
  return text;
}

TEST(CsvFileSyntax, SplitsEscapesLineEndsAndTheLineLimit) {
  const std::string at_limit(1023, 'x');
  std::string kana;  // 512 double-byte characters: 1024 bytes of code page 932
  for (int i = 0; i < 512; ++i) kana += Cp932("ア");
  const std::pair<std::string, std::string> cases[] = {
      {"a,b,\n,\n\nsingle", "a|b||;||;|;single|;"},
      {"a\r\nb\nc\r\n", "a|;b|;c|;"},
      {"", ""},
      {"a\\,b,c\\\\,d", "a,b|c\\|d|;"},
      {"a\\", "a\\|;"},  // a backslash at the end stays
      {"\\\\\\", "\\\\|;"},
      {"x\\\\\\,y", "x\\,y|;"},
      {std::string("ab\0c,d\nnext", 11), "ab|;next|;"},  // a NUL ends the line
      {"a\r\nb\r\n\x1a", "a|;b|;"},                      // an end-of-file mark ends the text
      {"a\x1a,b\nc", "a|;"},
      // 表 and ソ end in the byte 0x5C, the code of a backslash: no escape.
      {Cp932("表示,ソフト\\,名"), "表示|ソフト,名|;"},
      // A line of 1024 bytes or more ends the read silently; the limit counts bytes of code page
      // 932.
      {at_limit + "\r\nz\n", at_limit + "|;z|;"},
      {"first\n" + std::string(1024, 'y') + "\nthird\n", "first|;"},
      {kana, ""},
  };
  for (const auto& [bytes, rows] : cases) EXPECT_EQ(Rows(bytes), rows) << bytes;
  EXPECT_EQ(Rows(kana.substr(2)).size(), 511u * 3 + 2);

  QvCsvFile file;
  file.ReadBytes("a,b");
  EXPECT_TRUE(file.GetRow(4).empty());
  EXPECT_TRUE(file.GetFirstField(99).empty());
  // A bad escape anywhere fails the whole read and keeps no rows.
  QvCsvFile fresh;
  EXPECT_EQ(CodeOf([&] { fresh.ReadBytes("ok\nbad\\x\n"); }), -102);
  EXPECT_EQ(fresh.RowCount(), 0u);
}

TEST(CsvFileWrite, ExactBytesAndRoundTripThroughAFile) {
  QvCsvFile out;
  const QvCsvFile::Row tricky = {u"a\\", u"\\,", u",", u"", u"x\\\\y", U16("予定表ソ"), u"\\"};
  out.AddRow({U16("表,示"), u"", u"a\\b"});
  out.AddRow({});
  out.AddRow(tricky);
  EXPECT_EQ(out.WriteBytes(), Cp932("表\\,示,,a\\\\b\r\n\r\n"
                                    "a\\\\,\\\\\\,,\\,,,x\\\\\\\\y,予定表ソ,\\\\\r\n"));
  qvtest::ScratchDir dir;
  const std::u16string path = U16(dir.Sub("テスト.csv"));
  out.WriteFile(path);
  QvCsvFile in;
  in.ReadFile(path);
  ASSERT_EQ(in.RowCount(), 3u);
  EXPECT_EQ(in.GetRow(1), QvCsvFile::Row{u""});  // a row without fields comes back with one
  EXPECT_EQ(in.GetRow(2), tricky);

  EXPECT_EQ(CodeOf([&] { in.ReadFile(U16(dir.Sub("missing.csv"))); }), -101);
  EXPECT_EQ(CodeOf([&] { in.ReadFile(U16(dir.path())); }), -101);
  EXPECT_EQ(CodeOf([&] { out.WriteFile(U16(dir.Sub("no/such/folder.csv"))); }), -3);
}

// A file that cannot be made is -3; one that a full disk cuts short counts as written, since the
// stream's failures are not looked at.
TEST(CsvFileWrite, UnwritableAndFullDisks) {
  qvtest::ScratchDir dir;
  QvCsvFile out;
  out.AddRow({u"abc"});
  {
    qvtest::ReadOnlyDisk disk;
    EXPECT_EQ(CodeOf([&] { out.WriteFile(U16(dir.Sub("a.csv"))); }), -3);
  }
  EXPECT_FALSE(qvtest::Exists(dir.Sub("a.csv")));
  qvtest::FullDisk disk(2);
  EXPECT_EQ(CodeOf([&] { out.WriteFile(U16(dir.Sub("b.csv"))); }), 0);
  EXPECT_TRUE(disk.full());
  EXPECT_EQ(qvtest::ReadFile(dir.Sub("b.csv")), "");
}

// While reads are shared, the bytes of the last file read serve the next read of the same path
// once; another path, a failed read or the end of the sharing lets the file be read again.
TEST(CsvFileRead, SharedReadsServeTheNextReadOfTheSamePathOnce) {
  qvtest::ScratchDir dir;
  const std::u16string a = U16(dir.Sub("a.csv")), b = U16(dir.Sub("b.csv"));
  qvtest::WriteFile(dir.Sub("a.csv"), "1\r\n");
  qvtest::WriteFile(dir.Sub("b.csv"), "b\r\n");
  const auto first = [](const std::u16string& path) {
    QvCsvFile file;
    file.ReadFile(path);
    return file.GetFirstField(0);
  };
  {
    QvCsvFile::SharedReads shared;
    EXPECT_EQ(first(a), u"1");
    qvtest::WriteFile(dir.Sub("a.csv"), "2\r\n");
    EXPECT_EQ(first(a), u"1");  // the checker's bytes, taken by the reader
    EXPECT_EQ(first(a), u"2");  // served once only
    qvtest::WriteFile(dir.Sub("a.csv"), "3\r\n");
    EXPECT_EQ(first(b), u"b");  // another file in between
    EXPECT_EQ(first(a), u"3");
    qvtest::RemoveAll(dir.Sub("a.csv"));
    EXPECT_EQ(first(a), u"3");  // the same two reads, the file gone in between
    EXPECT_EQ(CodeOf([&] { first(a); }), -101);
    qvtest::WriteFile(dir.Sub("a.csv"), "4\r\n");
    EXPECT_EQ(first(a), u"4");
    qvtest::WriteFile(dir.Sub("a.csv"), "5\r\n");
  }
  EXPECT_EQ(first(a), u"5");  // nothing kept once the sharing has ended
  qvtest::WriteFile(dir.Sub("a.csv"), "6\r\n");
  EXPECT_EQ(first(a), u"6");
}

}  // namespace
}  // namespace quorvane::qvconv::io::csv
